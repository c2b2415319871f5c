// Fills the drop page and ties its buttons.
#include "Classes/DropHere/XDropHereViewController.h"

#include "Classes/DropHere/RecentFileButton.h"
#include "Classes/DropHere/XDropHereDelegate.h"
#include "Classes/DropHere/XDropHereView.h"
#include "Platform/Widgets/ThemeColors.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_XDropHereViewController.h"

namespace {

constexpr qsizetype shownRecentFiles = 5;
constexpr int titlePixels = 18;

} // namespace

XDropHereViewController::XDropHereViewController(XDropHereDelegate* document, QObject* parent)
    : XViewController(parent), m_document(document), m_ui(std::make_unique<Ui::XDropHereViewController>()),
      m_view(new QWidget) {
    m_ui->setupUi(m_view);
    setTitle(tr("New data source"));
    QFont titleFont = m_ui->titleLabel->font();
    titleFont.setPixelSize(titlePixels);
    m_ui->titleLabel->setFont(titleFont);
    m_ui->hintLabel->setForegroundRole(labelRole);
    m_ui->recentLabel->setContentsMargins(8, 0, 8, 0); // in line with the glyphs of the rows
    m_ui->recentLabel->setForegroundRole(hintRole);
    m_ui->recentLabel->setFont(VelquinStyle::smallFont(m_ui->recentLabel->font()));
    m_ui->dropzone->setDelegate(document);
    connect(m_ui->chooseFileButton, &QPushButton::clicked, this,
            &XDropHereViewController::chooseFileRequested);
    connect(m_ui->typeButton, &QPushButton::clicked, this, &XDropHereViewController::typeOrPasteRequested);
    setRecentFiles({});
}

XDropHereViewController::~XDropHereViewController() {
    delete m_view.data();
}

void XDropHereViewController::onBecameVisible() {
    m_ui->chooseFileButton->setFocus();
}

void XDropHereViewController::setDocument(XDropHereDelegate* document) {
    m_document = document;
    m_ui->dropzone->setDelegate(document);
}

XDropHereView* XDropHereViewController::dropzone() const {
    return m_ui->dropzone;
}

void XDropHereViewController::setRecentFiles(const QStringList& paths) {
    const auto rows = m_ui->recentFiles->findChildren<RecentFileButton*>();
    for (RecentFileButton* row : rows) {
        row->hide();
        row->deleteLater();
    }
    for (const QString& path : paths.first(std::min(paths.size(), shownRecentFiles))) {
        auto* row = new RecentFileButton(path);
        m_ui->recentFilesLayout->addWidget(row);
        connect(row, &QAbstractButton::clicked, this, [this, path] {
            if (m_document != nullptr)
                m_document->fileDroppedOnDropzone(path, *m_ui->dropzone);
        });
    }
    m_ui->recentFiles->setVisible(!paths.isEmpty());
}
