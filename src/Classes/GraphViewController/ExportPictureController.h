// The window in which a picture of the plot is chosen, looked at and written.
#pragma once

#include "Classes/GraphViewController/ExportChoices.h"
#include "Classes/GraphViewController/PictureWork.h"
#include "Platform/Core/OperationQueue.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <memory>

class QButtonGroup;

namespace Ui {
class ExportPicture;
}

/// Looking at a picture and writing it go on in the background; closing the window gives them up. Main
/// thread.
class ExportPictureController : public QDialog {
    Q_OBJECT

  public:
    /// `options` gives what the plot shows now; `name` is proposed for the file, without an ending.
    ExportPictureController(std::function<PlotPictureOptions()> options, QString name, QWidget* window);
    ~ExportPictureController() override;

  Q_SIGNALS:
    void exported(const QString& path);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void setUp();
    void show(const ExportChoices& choices);
    double chosenScale() const;
    /// What the controls say; absent while a field holds nothing that can be.
    std::optional<ExportChoices> choices() const;
    bool showFaults();
    void choicesChanged();
    void survey();
    void surveyed(quint64 number, const PictureSurvey& survey);
    void showCaption(const QString& text, bool isFault);
    void updateControls();
    void chooseFile();
    void write(const QString& path);
    void written(const QString& path, const std::optional<QString>& failure);
    void tellFailure(const QString& path, const QString& reason);

    std::function<PlotPictureOptions()> m_options;
    QString m_name;
    std::unique_ptr<Ui::ExportPicture> m_ui;
    QButtonGroup* m_scales = nullptr;
    QTimer m_pause; ///< until the user has stopped changing things
    quint64 m_surveyNumber = 0;
    bool m_isPossible = true; ///< as the last survey found
    bool m_isWriting = false;
    bool m_isEnding = false;   ///< what comes back from now on tells nobody
    OperationQueue m_queue{1}; ///< last: its end waits for what refers to the rest
};
