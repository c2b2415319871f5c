// The folder of autosaves: private to the user, shared by all of the user's programs.
#pragma once

#include "Classes/Recovery/AutosaveFile.h"
#include "Classes/Recovery/AutosaveRecord.h"

#include <QString>

#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

/// An autosave whose program is gone; held by this one as long as `file` is.
struct LeftAutosave {
    std::shared_ptr<AutosaveFile> file;
    AutosaveRecord record;
};

namespace AutosaveFolder {

/// velquin/autosave below the folder for state (XDG_STATE_HOME, or ~/.local/state).
QString standardPath();

/// Makes the folder, for its owner alone. Returns the reason if there is none that can be trusted: it must be
/// the user's own, and no link. Any thread.
std::optional<QString> make(const QString& folder);

/// Takes hold of what others left, the latest first, at most a hundred. What is no autosave of this user is
/// logged and set aside; what a living program holds, or a later version wrote, is passed over. Removes the
/// leftovers of interrupted writes. Any thread; reads up to half a gigabyte, file by file until it is
/// stopped.
std::vector<LeftAutosave> takeLeft(const QString& path, const std::stop_token& stop = {});

} // namespace AutosaveFolder
