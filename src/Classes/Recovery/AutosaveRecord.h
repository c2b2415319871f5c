// What an autosave holds: a document that was not saved, and what is needed to open it as it was.
#pragma once

#include "Classes/Recovery/ProcessIdentity.h"
#include "MoxDocument.h"

#include <QDateTime>
#include <QString>
#include <QVariantMap>

#include <optional>

struct AutosaveRecord {
    UnsavedDocument document;
    QString name; ///< as the window showed it
    QDateTime savedAt;
    ProcessIdentity process; ///< that wrote it
    /// The program was told to end, and wrote this before it did.
    bool endedOnDemand = false;

    /// A property list; settings and text only, so that it can be made on the main thread.
    QVariantMap toPlist() const;
    /// Absent if that is no autosave. The document within is not looked into.
    static std::optional<AutosaveRecord> fromPlist(const QVariant& root);
    /// Whether a later version of the program wrote that, for itself to read.
    static bool isOfLaterVersion(const QVariant& root);
};
