// Fills the window and ties its links.
#include "Classes/WindowControllers/AboutWindowController.h"

#include "Classes/SmallViews/XHrefButton.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/DesktopOpening.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "Product.h"
#include "ui_AboutWindowController.h"

namespace {

constexpr int namePixels = 22;
constexpr int iconSide = 88;

} // namespace

AboutWindowController::AboutWindowController(QObject* parent)
    : XWindowController(parent), m_ui(std::make_unique<Ui::AboutWindowController>()) {
    m_ui->setupUi(window());
    awakeFromNib();
}

AboutWindowController::~AboutWindowController() = default;

QLabel* AboutWindowController::versionLabel() const {
    return m_ui->versionLabel;
}

XHrefButton* AboutWindowController::siteLinkButton() const {
    return m_ui->siteLinkButton;
}

XHrefButton* AboutWindowController::forumLinkButton() const {
    return m_ui->forumLinkButton;
}

void AboutWindowController::awakeFromNib() {
    const QString name = QLatin1String(Product::name);
    window()->setWindowTitle(tr("About %1").arg(name));
    m_ui->iconLabel->setPixmap(Pictures::pixmap(QStringLiteral("velquin"), window()->devicePixelRatioF(),
                                                Appearance::instance().theme(), QSize(iconSide, iconSide)));
    QFont nameFont = m_ui->nameLabel->font();
    nameFont.setPixelSize(namePixels);
    m_ui->nameLabel->setFont(nameFont);
    m_ui->nameLabel->setText(name);
    m_ui->versionLabel->setForegroundRole(labelRole);
    m_ui->versionLabel->setText(tr("Version %1").arg(QLatin1String(Product::version)));
    m_ui->sentenceLabel->setText(tr(Product::sentence));
    m_ui->madeWithLabel->setForegroundRole(hintRole);
    m_ui->madeWithLabel->setFont(VelquinStyle::smallFont(m_ui->madeWithLabel->font()));
    window()->setFocus();
    for (XHrefButton* link : {siteLinkButton(), forumLinkButton()})
        link->setFocusRing(false);
    m_ui->siteLinkButton->setToolTip(QLatin1String(Product::site));
    m_ui->forumLinkButton->setToolTip(QLatin1String(Product::forum));
    connect(m_ui->siteLinkButton, &XHrefButton::clicked, this, &AboutWindowController::onSiteLink);
    connect(m_ui->forumLinkButton, &XHrefButton::clicked, this, &AboutWindowController::onForumLink);
}

void AboutWindowController::onSiteLink() {
    DesktopOpening::openWebPage(QUrl(QLatin1String(Product::site)), window());
}

void AboutWindowController::onForumLink() {
    DesktopOpening::openWebPage(QUrl(QLatin1String(Product::forum)), window());
}
