// Takes what would open in the desktop's web and file browsers.
#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QStringList>
#include <QUrl>

class FakeBrowser : public QObject {
    Q_OBJECT

  public:
    FakeBrowser() {
        for (const QString& scheme : schemes())
            QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~FakeBrowser() override { quit(); }

    /// The desktop has none any more.
    static void quit() {
        for (const QString& scheme : schemes())
            QDesktopServices::unsetUrlHandler(scheme);
    }
    Q_SLOT void open(const QUrl& url) { opened += url.toString(); }

    QStringList opened;

  private:
    static QStringList schemes() { return {QStringLiteral("https"), QStringLiteral("file")}; }
};
