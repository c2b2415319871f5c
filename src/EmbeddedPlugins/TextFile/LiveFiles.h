// The files that the user wants read again whenever they change, kept among the user's settings.
#pragma once

#include <QString>

namespace LiveFiles {

inline constexpr const char* defaultsKey = "LiveFiles"; ///< absolute paths, the latest choice first
inline constexpr int most = 200;                        ///< more than that are forgotten, the oldest first

/// The form in which a path is kept: absolute, the home folder spelled out, without "." and "..". Links are
/// not followed: what they lead to may change. Empty for an empty path.
QString pathKey(const QString& path);

bool contains(const QString& path);
void set(const QString& path, bool isLive);

} // namespace LiveFiles
