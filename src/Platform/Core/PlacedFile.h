// A finished file put under its name in one step, whatever others have put there.
#pragma once

#include <QByteArray>
#include <QString>

namespace PlacedFile {

/// What becomes of something that already has the name. A link is not followed, a pipe or a device not
/// written to: it is the name that is given away anew, so nothing planted there can redirect the bytes.
enum class Existing { Keep, Replace };

struct Result {
    enum class Outcome { Written, NameTaken, Failed };

    Outcome outcome = Outcome::Written;
    QString reason; ///< of a failure, in the system's words

    bool isWritten() const { return outcome == Outcome::Written; }
};

/// Writes a new file beside `path` and gives it that name once it is whole and synced. A failure leaves
/// nothing behind. `mode` is that of the file, less the user's mask. Any thread.
Result write(const QString& path, const QByteArray& bytes, Existing existing, unsigned mode = 0666);

/// For diagnostics in a folder that everybody may write to: replaces, and only the user may read it.
inline Result writeInSharedFolder(const QString& path, const QByteArray& bytes) {
    return write(path, bytes, Existing::Replace, 0600);
}

} // namespace PlacedFile
