// The slices of the picture, and the thread that draws one of them.
#include "Classes/PlotView/CurveStrokes.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

/// Columns of the left slice: fewer than half, since its thread reads the rows, too. A multiple of the pixels
/// of a cache line, which two threads had better not share.
int leftColumns(int width) {
    constexpr int pixelsOfCacheLine = 16;
    return width * 3 / 8 / pixelsOfCacheLine * pixelsOfCacheLine;
}

} // namespace

/// Some neighbouring columns of the picture.
class CurveStrokes::Slice {
  public:
    Slice(const StrokeTarget& target, int firstColumn, int endColumn)
        : m_firstColumn(firstColumn), m_image{target.image.pixels + firstColumn, target.image.stride},
          m_colors(target.colors), m_rasterizer(endColumn - firstColumn, target.height, target.lineWidth) {}

    void draw(std::span<const Step> steps) {
        for (const Step& step : steps) {
            if (step.kind == Step::Line)
                m_rasterizer.lineTo(double{step.x} - m_firstColumn, step.y);
            else if (step.kind == Step::Move)
                m_rasterizer.moveTo(double{step.x} - m_firstColumn, step.y);
            else
                m_rasterizer.paint(m_image, m_colors);
        }
    }

  private:
    int m_firstColumn;
    PixelGrid m_image;
    const CoverageRamp& m_colors;
    StrokeRasterizer m_rasterizer;
};

/// A thread that draws what it is handed, in the order of the hand-overs.
class CurveStrokes::SliceThread {
  public:
    /// Throws std::system_error when there is no thread.
    SliceThread(Slice& slice, std::stop_token stop)
        : m_slice(slice), m_stop(std::move(stop)), m_thread([this] { run(); }) {}

    /// Draws what is left.
    ~SliceThread() {
        {
            const std::lock_guard lock(m_mutex);
            m_isEnd = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }
    SliceThread(const SliceThread&) = delete;
    SliceThread& operator=(const SliceThread&) = delete;

    /// Waits while the thread is far behind.
    void hand(std::shared_ptr<const Steps> steps) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_waiting.size() < mostWaiting; });
        m_waiting.push_back(std::move(steps));
        lock.unlock();
        m_changed.notify_all();
    }

  private:
    void run() noexcept { // nothing in it allocates
        while (const std::shared_ptr<const Steps> steps = next()) {
            if (!m_stop.stop_requested())
                m_slice.draw(*steps);
        }
    }

    std::shared_ptr<const Steps> next() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_isEnd || !m_waiting.empty(); });
        if (m_waiting.empty())
            return nullptr;
        std::shared_ptr<const Steps> steps = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        m_changed.notify_all();
        return steps;
    }

    /// The first steps take longest, before anything is full. With so many waiting, 3 MB, the other thread
    /// need not wait then.
    static constexpr std::size_t mostWaiting = 32;

    Slice& m_slice;
    std::stop_token m_stop;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<const Steps>> m_waiting;
    bool m_isEnd = false;
    std::thread m_thread; ///< last: it uses the rest
};

CurveStrokes::CurveStrokes(const StrokeTarget& target, std::stop_token stop)
    : m_target(target), m_stop(std::move(stop)) {
    m_steps.reserve(stepsAtOnce);
}

CurveStrokes::~CurveStrokes() = default;

void CurveStrokes::strokePath() {
    // An opaque stroke over an opaque one of its own colour changes nothing: all are painted at once, which
    // saves a table full of gaps from painting the same pixels again and again.
    if (!m_target.isOpaque)
        add({0, 0, Step::Paint});
}

/// Draws the steps that wait, in slices.
void CurveStrokes::passOn() {
    if (!m_left) {
        const int border = leftColumns(m_target.width);
        m_left = std::make_unique<Slice>(m_target, 0, border);
        m_right = std::make_unique<Slice>(m_target, border, m_target.width);
        try {
            m_thread = std::make_unique<SliceThread>(*m_right, m_stop);
        } catch (const std::system_error&) {
            // This thread draws both.
        }
    }
    const auto steps = std::make_shared<const Steps>(std::move(m_steps));
    m_steps = {};
    m_steps.reserve(stepsAtOnce);
    if (m_thread)
        m_thread->hand(steps);
    m_left->draw(*steps);
    if (!m_thread)
        m_right->draw(*steps);
}

void CurveStrokes::finish() {
    m_steps.push_back({0, 0, Step::Paint});
    if (m_left)
        passOn();
    else
        Slice(m_target, 0, m_target.width).draw(std::exchange(m_steps, {}));
    m_thread.reset();
}
