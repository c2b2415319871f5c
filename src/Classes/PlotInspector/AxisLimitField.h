// The field of one end of an axis' range.
#pragma once

#include "Classes/Axes/XAxisInfo.h"
#include "Classes/CurvesSidebar/RowTextField.h"
#include "Classes/PlotInspector/AxisKeys.h"
#include "Platform/Core/Observable.h"

#include <QPointer>

#include <array>
#include <optional>

class MoxDocument;

enum class RangeEnd { From, To };

/// Shows and takes the value as the kind of axis writes it; empty, the end follows the data. A text that
/// cannot be taken stays as it was typed, with the reason for it, and is tried again when the other end or
/// the kind changes.
class AxisLimitField : public RowTextField {
    Q_OBJECT

  public:
    explicit AxisLimitField(QWidget* parent = nullptr);

    /// Without a document the field is empty. `keys` lives for ever.
    void setDocument(MoxDocument* document, const AxisKeys& keys, RangeEnd end);

    /// Whether values of this kind are dates, which take more room than numbers.
    static bool takesDates(const XAxisInfo& kind);

  Q_SIGNALS:
    void refused(const QString& reason); ///< empty: what was refused is right now, or gone

  protected:
    QString settledText() const override;

  private:
    void keyChanged(const KeyChange& change);
    void commit();
    void showLimit();
    void updateFault();
    std::optional<double> limit() const { return valueOf(m_keys[0]); }
    std::optional<double> valueOf(const char* key) const;
    const XAxisInfo& kind() const;
    QString reasonAgainst(double value) const; ///< empty: none
    QString hint() const;

    QPointer<MoxDocument> m_document;
    std::array<const char*, 3> m_keys{}; ///< of this end, of the other one, of the kind
    RangeEnd m_end = RangeEnd::From;
    Observation m_observation;
    bool m_isRefused = false; ///< the text that stands there
};
