// One row of the list of recent data files.
#pragma once

#include <QAbstractButton>

/// Shows a file's name and, at the right, its folder; a file that is gone is disabled and says so.
class RecentFileButton : public QAbstractButton {
    Q_OBJECT

  public:
    explicit RecentFileButton(const QString& path, QWidget* parent = nullptr);

    const QString& path() const { return m_path; }

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString m_path;
    QString m_remark; ///< the folder, or that the file is missing
};
