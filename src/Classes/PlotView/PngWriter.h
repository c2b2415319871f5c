// Writes a finished picture as PNG.
#pragma once

#include <QImage>
#include <QString>

#include <optional>
#include <stop_token>

class QIODevice;

/// Writes `image`, which is opaque, with its resolution. Returns the reason of a failure; a stop, which is
/// looked at before each row, is one. What was written until then stays. Any thread.
std::optional<QString> writePng(const QImage& image, QIODevice& device, const std::stop_token& stop = {});
