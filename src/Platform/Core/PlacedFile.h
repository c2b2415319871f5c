// A finished file put under its name in one step, whatever others have put there.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace PlacedFile {

/// What becomes of something that already has the name.
enum class Existing {
    Keep,    ///< it stays, were it a link to nothing, and the outcome is NameTaken
    Replace, ///< it goes: a link is not followed, a pipe or a device not written to, so that nothing planted
             ///< there can redirect the bytes
    Update,  ///< a plain file gets new contents: links are followed and its mode is kept. A file that may not
             ///< be written, and anything but a file, is a failure
};

/// Asked with the new file, whole and synced, right before it takes its name; a reason gives the writing up.
/// Asked again of another file where the system does not let the first one take a name.
using LastWord = std::function<std::optional<QString>(int descriptor)>;

struct Policy {
    Existing existing = Existing::Update;
    unsigned mode = 0666; ///< of a file that is new, less the user's mask
    LastWord lastWord = {};
};

struct Result {
    enum class Outcome { Written, NameTaken, Failed };

    Outcome outcome = Outcome::Written;
    QString reason; ///< of a failure: the system's words, or the last one

    bool isWritten() const { return outcome == Outcome::Written; }
};

/// What the names of new files begin with that do not have their own yet.
inline constexpr const char* temporaryPrefix = ".velquin-";

/// Writes a new file in the folder of `path` and gives it that name once it is whole and synced; then syncs
/// the folder. Whoever looks finds what was there before or the new file, never a part. A failure leaves what
/// was there, and nothing beside it. So does the end of the program meanwhile, with two exceptions in which a
/// file with `temporaryPrefix` stays behind: right before the new file takes the place of another, and all
/// along where a file without a name is not to be had, or not to be named (NFS, FAT, some sandboxes).
/// Throws what `lastWord` throws. Any thread.
Result write(const QString& path, const QByteArray& bytes, const Policy& policy = {});

/// For diagnostics in a folder that everybody may write to: replaces, and only the user may read it.
inline Result writeInSharedFolder(const QString& path, const QByteArray& bytes) {
    return write(path, bytes, {.existing = Existing::Replace, .mode = 0600});
}

} // namespace PlacedFile
