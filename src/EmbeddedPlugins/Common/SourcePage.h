// What the settings views of text files and of the text editor share: the preview, the counts, what they say.
#pragma once

#include "EmbeddedPlugins/Common/SourceSurvey.h"
#include "EmbeddedPlugins/TextFile/PreviewTableModel.h"
#include "Platform/Core/OperationQueue.h"
#include "Platform/Core/PendingEdits.h"
#include "Platform/Core/XViewController.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <optional>

class PreviewTableView;
class QCheckBox;
class QComboBox;
class QLabel;
class XPTextFile;

/// Main thread. The source may go before its page does.
class SourcePage : public XViewController, public PendingEdits {
    Q_OBJECT

  public:
    ~SourcePage() override;

    QWidget* view() override { return m_view; }
    XPTextFile* plugin() const; ///< null once it is gone
    PreviewTableView* dataTable() const { return m_outlets.dataTable; }

    /// Shows the source's columns anew.
    void refreshDataTable();
    /// Whether file and table are being looked at, for what the page says about them.
    bool isSurveying() const { return m_surveyTaken != m_surveyNumber; }
    /// Takes over what was typed into a field and not yet entered.
    void commitPendingEdits() override;

  protected:
    struct Outlets {
        PreviewTableView* dataTable = nullptr;
        QLabel* parsedDataLabel = nullptr; ///< the table's title
        QLabel* countLabel = nullptr;
        QComboBox* delimiterBox = nullptr;
        QCheckBox* headerBox = nullptr;
    };
    /// What a look at the file and at the table gave.
    struct Survey {
        std::optional<TableSurvey> table;
        HeadSurvey head;
        bool fileExists = true;
    };

    explicit SourcePage(QObject* parent);
    void setOutlets(const Outlets& outlets);
    /// Ends the widgets; for the destructors of subclasses, whose members the widgets' signals reach.
    void deleteView();

    /// Observes another source: its `kvoKeys`, data, title, and what tells how reading goes.
    void observePlugin(XPTextFile* plugin);
    virtual void observeValueForKeyPath(const KeyChange& change);

    /// The file to look at; none for data that came otherwise.
    virtual QString surveyedPath() const { return {}; }
    /// The file and the table were looked at.
    virtual void surveyChanged() {}
    /// What to do when there is nothing to show.
    virtual QString emptyText() const = 0;
    const std::optional<Survey>& survey() const { return m_survey; }
    void showState();
    /// Whether the read that runs is none that anybody asked for and has not lasted long.
    bool isReadingQuietly() const;

  private:
    class SurveyOperation;

    void readingChanged();
    void startSurvey();
    void takeSurvey(quint64 number, const Survey& survey);
    QString countText() const;
    QString statusText() const;

    QPointer<XPTextFile> m_plugin;
    QPointer<QWidget> m_view = new QWidget; ///< goes with the widget that shows it, if that goes first
    Outlets m_outlets;
    PreviewTableModel m_model;
    Observation m_settingsObservation;
    Observation m_observation;
    QElapsedTimer m_readClock;
    std::optional<double> m_readSeconds; ///< of the table that is shown
    std::optional<Survey> m_survey;
    quint64 m_surveyNumber = 0; ///< of the latest
    quint64 m_surveyTaken = 0;
    OperationQueue m_queue{1}; ///< last: it ends before what its results go to
};
