// Row by row through libpng. The toolkit's encoder can only be ended by a device that fails, and loses its
// list of rows then.
#include "Classes/PlotView/PngWriter.h"

#include "Platform/Core/WholeWrite.h"

#include <QIODevice>

#include <png.h>

#include <array>
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <exception>

namespace {

constexpr const char* noMemory = "There is no memory for a picture of this size.";

using Reason = std::array<char, 200>;

/// Keeps the reason and jumps to the place that `writeRows` has set: the library knows no other way out.
[[noreturn]] void failWith(png_structp png, png_const_charp reason) {
    auto& kept = *static_cast<Reason*>(png_get_error_ptr(png));
    std::snprintf(kept.data(), kept.size(), "%s", reason);
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

/// Null, or the reason of a failure.
const char* failureOfWriting(QIODevice& device, const char* bytes, qint64 size) noexcept {
    try {
        return writeWhole(device, bytes, size) ? nullptr : "The device takes no more.";
    } catch (const std::exception&) {
        return noMemory;
    }
}

void writeBytes(png_structp png, png_bytep bytes, std::size_t size) {
    auto& device = *static_cast<QIODevice*>(png_get_io_ptr(png));
    const char* failure =
        failureOfWriting(device, reinterpret_cast<const char*>(bytes), static_cast<qint64>(size));
    if (failure != nullptr)
        png_error(png, failure);
}

void flushNothing(png_structp) {}

/// The library's state of one picture.
class PngState {
  public:
    PngState() : m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_reason, failWith, ignoreWarning)) {
        if (m_png != nullptr)
            m_info = png_create_info_struct(m_png);
    }
    ~PngState() { png_destroy_write_struct(&m_png, &m_info); }
    PngState(const PngState&) = delete;
    PngState& operator=(const PngState&) = delete;

    png_structp png() { return m_png; }
    png_infop info() { return m_info; }
    QString reason() const { return QString::fromUtf8(m_reason.data()); }

  private:
    Reason m_reason{};
    png_structp m_png;
    png_infop m_info = nullptr;
};

/// False when the library failed. A failure jumps back here over frames of the library's and of the functions
/// above that have nothing to destroy, as this one has not.
bool writeRows(png_structp png, png_infop info, const QImage& image, const std::stop_token& stop) {
    // NOLINTNEXTLINE(cert-err52-cpp): an exception may not pass through a library in C
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_set_IHDR(png, info, static_cast<png_uint_32>(image.width()), static_cast<png_uint_32>(image.height()),
                 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, static_cast<png_uint_32>(image.dotsPerMeterX()),
                 static_cast<png_uint_32>(image.dotsPerMeterY()), PNG_RESOLUTION_METER);
    png_write_info(png, info);
    // In memory a pixel is blue, green, red, nothing.
    static_assert(std::endian::native == std::endian::little);
    png_set_bgr(png);
    png_set_filler(png, 0, PNG_FILLER_AFTER);
    for (int row = 0; row < image.height(); ++row) {
        if (stop.stop_requested())
            png_error(png, "It was stopped.");
        png_write_row(png, image.constScanLine(row));
    }
    png_write_end(png, info);
    return true;
}

} // namespace

std::optional<QString> writePng(const QImage& image, QIODevice& device, const std::stop_token& stop) {
    const QImage opaque = image.convertToFormat(QImage::Format_RGB32);
    PngState state;
    if (opaque.isNull() || state.info() == nullptr)
        return QString::fromUtf8(noMemory);
    png_set_write_fn(state.png(), &device, writeBytes, flushNothing);
    if (!writeRows(state.png(), state.info(), opaque, stop))
        return state.reason();
    return std::nullopt;
}
