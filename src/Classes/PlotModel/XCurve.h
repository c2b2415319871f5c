// One curve of a document: where its values come from, how it looks, and what was rendered of it.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Classes/PlotView/XGraphPointDescription.h"
#include "Core/RgbaColor.h"
#include "EmbeddedPlugins/Common/XValueRange.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/Observable.h"

#include <QImage>
#include <QVariantMap>

#include <array>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

class XAxis;

using XAxisHandle = std::shared_ptr<XAxis>;
using XPointShape = const XGraphPointDescription*; ///< an entry of the points library, which lives for ever

/// What a render task needs of a curve, taken in one go under its locks.
struct CurveSnapshot {
    XTable table;      ///< the data source's; null when there is none
    XTable xEvaluated; ///< null unless x comes from an expression and was evaluated
    XTable yEvaluated;
    XTable pointsizeEvaluated;
    bool xUsesExpression = false;
    bool yUsesExpression = false;
    bool pointsizeUsesExpression = false;
    int xIndex = 0; ///< 1-based column, 0 the row number
    int yIndex = 0;
    RgbaColor color;
    float colorAlpha = 1;
    int lineWidth = 1; ///< points
    int ticksSize = 0; ///< points
    XPointShape ticksShape = nullptr;
    quint64 changeCount = 0; ///< of the curve when the snapshot was taken

    /// Rows that can be drawn: the least of the lengths of the columns used, 0 without a table.
    std::uint64_t rows() const;
};

/// The image a render task made, and the axes it was made for.
struct RenderedCurve {
    QImage image;      ///< device pixels, transparent; null when the curve was not rendered
    XAxisHandle axisX; ///< lengths in points
    XAxisHandle axisY;
};

/// A curve observes its own keys and its data source; main thread, but for what says otherwise.
class XCurve : public Observable {
    Q_OBJECT
    OBSERVED(XDataSource, dataSource, setDataSource, {})
    Q_PROPERTY(RgbaColor color READ color WRITE setColor)
    OBSERVED(float, colorAlpha, setColorAlpha, 1.0F)
    OBSERVED(bool, isVisible, setIsVisible, true)
    OBSERVED(int, lineWidth, setLineWidth, 1)
    OBSERVED(XPointShape, ticksShape, setTicksShape, nullptr)
    OBSERVED(int, ticksSize, setTicksSize, 0)
    OBSERVED(QString, title, setTitle, {})
    OBSERVED(int, x_data_index, setX_data_index, 0)
    OBSERVED(int, y_data_index, setY_data_index, 0)
    OBSERVED(int, pointsize_data_index, setPointsize_data_index, 0)
    OBSERVED(bool, x_uses_expression, setX_uses_expression, false)
    OBSERVED(bool, y_uses_expression, setY_uses_expression, false)
    Q_PROPERTY(
        bool pointsize_uses_expression READ pointsize_uses_expression WRITE setPointsize_uses_expression)
    OBSERVED(std::optional<QString>, x_data_expression, setX_data_expression, {})
    OBSERVED(std::optional<QString>, y_data_expression, setY_data_expression, {})
    OBSERVED(std::optional<QString>, pointsize_data_expression, setPointsize_data_expression, {})
    OBSERVED(XTable, x_evaluated_data, setX_evaluated_data, {})
    OBSERVED(XTable, y_evaluated_data, setY_evaluated_data, {})
    OBSERVED(XTable, pointsize_evaluated_data, setPointsize_evaluated_data, {})
    OBSERVED(float, xExpressionProgress, setXExpressionProgress, 0.0F)
    OBSERVED(float, yExpressionProgress, setYExpressionProgress, 0.0F)
    OBSERVED(float, pointsizeExpressionProgress, setPointsizeExpressionProgress, 0.0F)
    OBSERVED(QString, xExpressionError, setXExpressionError, {})
    OBSERVED(QString, yExpressionError, setYExpressionError, {})
    OBSERVED(QString, pointsizeExpressionError, setPointsizeExpressionError, {})
    OBSERVED(XAxisHandle, axis_X, setAxis_X, {})
    OBSERVED(XAxisHandle, axis_Y, setAxis_Y, {})
    Q_PROPERTY(bool needsRedraw READ needsRedraw WRITE setNeedsRedraw)
    OBSERVED(bool, beingRendered, setBeingRendered, false)
    OBSERVED(float, renderingProgress, setRenderingProgress, 0.0F)

  public:
    /// Made by `make`, since a worker may hold the last handle: it is destroyed on the main thread.
    static std::shared_ptr<XCurve> make();
    ~XCurve() override;

    QVariantMap plist() const;
    void loadFromPlist(const QVariant& plist);

    RgbaColor color() const; ///< any thread
    void setColor(RgbaColor color);
    bool pointsize_uses_expression() const { return m_pointsize_uses_expression; }
    void setPointsize_uses_expression(bool uses);
    bool needsRedraw() const { return m_needsRedraw; }
    /// Setting it, even when it is set, counts as a change that a running render task has not seen.
    void setNeedsRedraw(bool needsRedraw);

    /// Start the evaluation of that axis; false when it has nothing to evaluate.
    bool startEvaluatingX();
    bool startEvaluatingY();
    bool startEvaluatingPointsize();

    /// Take over a result, and ask for a redraw.
    void setDataX(XTable evaluated);
    void setDataY(XTable evaluated);
    void setDataPointsize(XTable evaluated);

    /// Least and greatest value on that axis within its valid range; (-10, 10) without data.
    XValueRange getRangeX() const;
    XValueRange getRangeY() const;

    /// A second, plain setter that bypasses observation.
    void setDatasource(XDataSource dataSource);

    /// One consistent view of the curve for a worker. Main thread.
    CurveSnapshot snapshot() const;
    /// Takes over what a task rendered; clears `needsRedraw` only if nothing changed since the snapshot
    /// (returns whether so). Main thread, under the curve's lock.
    bool acceptRendering(RenderedCurve rendering, quint64 changeCountOfSnapshot);
    RenderedCurve rendering() const;
    QImage renderedImage() const; ///< any thread, under the curve's lock
    void discardRenderedImage();

  private:
    enum class Role { X, Y, Pointsize };
    static constexpr Role allRoles[] = {Role::X, Role::Y, Role::Pointsize};
    struct RoleSettings;
    class EvaluationRelay;

    XCurve();
    void ownKeyChanged(const KeyChange& change);
    void dataSourceUpdated(QObject* sender);
    void dataSourceWillRemoved(QObject* sender);
    RoleSettings settings(Role role) const;
    bool startEvaluating(Role role);
    void restartEvaluating(Role role, const QVariant& oldValue);
    bool isEvaluating(Role role, const QString& expression, quint64 generation) const;
    void setEvaluated(Role role, XTable evaluated);
    void setEvaluationError(Role role, const QString& reason);
    void setEvaluationProgress(Role role, float percentage);
    void expressionEvaluated(const QString& expression, const XTable& result, quint64 generation);
    void expressionFailed(const QString& expression, const QString& reason, quint64 generation);
    void progressChanged(const QString& expression, float percentage, quint64 generation);
    XValueRange range(Role role, const XAxisHandle& axis) const;
    XTable lockedTable() const;

    mutable std::mutex m_lock; ///< of the colour and of the rendering
    RgbaColor m_color;
    QImage m_renderedImage;
    bool m_pointsize_uses_expression = false;
    bool m_needsRedraw = false;
    quint64 m_changeCount = 0;
    std::shared_ptr<EvaluationRelay> m_relay;                 ///< the evaluator's delegate
    std::array<quint64, std::size(allRoles)> m_generations{}; ///< of the evaluation started last, by role
    Observation m_selfObservation;
    NotificationCenter::Registration m_updateRegistration;
    NotificationCenter::Registration m_removalRegistration;
};

using XCurveHandle = std::shared_ptr<XCurve>;
