// Strokes the line of a curve into a picture: a long one on two threads, each in columns of its own.
#pragma once

#include "Core/PremultipliedColor.h"
#include "Core/StrokeRasterizer.h"

#include <memory>
#include <span>
#include <stop_token>
#include <vector>

/// Where and how a line is stroked.
struct StrokeTarget {
    PixelGrid image; ///< outlives the strokes
    int width;       ///< pixels
    int height;
    double lineWidth; ///< pixels, positive
    CoverageRamp colors;
    bool isOpaque;
};

/// Takes the sub-paths of one curve, in pixels, y upwards. Which columns are drawn apart depends on the line
/// alone and not on the machine, so that it is the same picture everywhere.
class CurveStrokes {
  public:
    /// After a stop the picture may be left unfinished.
    CurveStrokes(const StrokeTarget& target, std::stop_token stop);
    ~CurveStrokes();
    CurveStrokes(const CurveStrokes&) = delete;
    CurveStrokes& operator=(const CurveStrokes&) = delete;

    void moveTo(float x, float y) { add({x, y, Step::Move}); }
    void lineTo(float x, float y) { add({x, y, Step::Line}); }
    /// Ends the sub-path.
    void strokePath();
    /// When this returns, all is painted.
    void finish();

  private:
    struct Step {
        float x;
        float y;
        enum { Move, Line, Paint } kind;
    };
    using Steps = std::vector<Step>;
    class Slice;
    class SliceThread;

    void add(Step step) {
        m_steps.push_back(step);
        if (m_steps.size() == stepsAtOnce)
            passOn();
    }
    void passOn();

    /// Drawing so many takes far longer than a thread to start. A curve in the order of x keeps some four
    /// points a column of pixels and seldom has more.
    static constexpr std::size_t stepsAtOnce = 8192;

    StrokeTarget m_target;
    std::stop_token m_stop;
    Steps m_steps; ///< not drawn yet
    std::unique_ptr<Slice>
        m_left; ///< drawn by the calling thread; all of the picture while there is no right one
    std::unique_ptr<Slice> m_right;        ///< drawn by the other
    std::unique_ptr<SliceThread> m_thread; ///< null without a right slice, or where the system had no thread
};
