// The controls of one axis in the plot inspector.
#pragma once

#include "Classes/Axes/XAxisInfo.h"
#include "Classes/PlotInspector/AxisKeys.h"
#include "Platform/Core/Observable.h"

#include <QWidget>

#include <array>
#include <memory>

class MoxDocument;

namespace Ui {
class AxisOptionsView;
}

/// Written over an axis: which one, is told once.
class AxisOptionsView : public QWidget {
    Q_OBJECT

  public:
    struct Names {
        QString axis; ///< "x axis"
        QString origin;
        QString gridLines;
    };

    explicit AxisOptionsView(QWidget* parent = nullptr);
    ~AxisOptionsView() override;

    void setAxis(const AxisKeys& keys, const Names& names);
    /// Null empties the controls.
    void setDocument(MoxDocument* document);

  Q_SIGNALS:
    /// Why what was typed cannot be taken.
    void refused(const QString& reason);

  private:
    void arrangeRange(bool dates);

    std::unique_ptr<Ui::AxisOptionsView> m_ui;
    AxisKeys m_keys{};
    std::array<const char*, 1> m_kindKey{};
    Observation m_kind;
};
