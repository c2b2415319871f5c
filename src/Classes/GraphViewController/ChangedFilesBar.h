// The notice at the foot of the list of curves that data files changed on the disk since they were read.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Platform/Core/NotificationCenter.h"

#include <QPointer>
#include <QWidget>

#include <set>
#include <vector>

class NoticeButton;
class QVariantAnimation;
class XDataSourcesManager;
class XHoverButton;
class XPTextFile;

/// Beside the plot, which it neither covers nor makes smaller: a file may change while its plot is measured.
/// Gone as soon as the files are read again, by whatever road; dismissed until the next change.
class ChangedFilesBar : public QWidget {
    Q_OBJECT

  public:
    explicit ChangedFilesBar(QWidget* parent = nullptr);

    /// Follows the text files among these sources, which outlive it or end it with null.
    void setSources(const XDataSourcesManager* sources);
    /// What is said; empty while the bar is folded.
    const QString& text() const { return m_text; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void observeSources();
    void fileChanged(const KeyChange& change);
    std::vector<XDataSource> offered() const;
    void showOffered();
    void reload();
    void dismiss();
    void fold(bool folded);
    void layOut();
    QString fittingText() const; ///< with a long name cut in its middle
    QRect textRoom() const;
    int openHeight() const;

    const XDataSourcesManager* m_sources = nullptr;
    std::vector<NotificationCenter::Registration> m_registrations;
    std::vector<Observation> m_observations;
    std::set<const Observable*> m_dismissed;
    QString m_text;
    QString m_name; ///< of the file, where there is one
    QWidget* m_box; ///< clips what lies in the notice while it unfolds
    NoticeButton* m_reload;
    XHoverButton* m_close;
    QPointer<QVariantAnimation> m_folding;
};
