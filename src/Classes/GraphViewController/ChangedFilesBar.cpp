// Collects what the sources say of their files, and lays the notice out.
#include "Classes/GraphViewController/ChangedFilesBar.h"

#include "Classes/DataSourcesManager/XDataSourcesManager.h"
#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/SmallViews/NoticeButton.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "Platform/Widgets/Animation.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <QVariantAnimation>

#include <algorithm>

namespace {

constexpr int outside = 8; ///< around the box
constexpr int inside = 8;  ///< over the text, between it and the buttons, below them
constexpr int textLeft = 34;
constexpr int foldMilliseconds = 100;

} // namespace

ChangedFilesBar::ChangedFilesBar(QWidget* parent)
    : QWidget(parent), m_box(new QWidget(this)), m_reload(new NoticeButton(m_box)),
      m_close(new XHoverButton(m_box)) {
    setFixedHeight(0);
    m_box->hide();
    m_reload->setText(tr("Reload"));
    m_reload->setAccessibleName(m_reload->text());
    m_close->setImage(QStringLiteral("tab_close"));
    m_close->setAlternateImage(QStringLiteral("tab_close_pressed"));
    for (QWidget* button : {static_cast<QWidget*>(m_reload), static_cast<QWidget*>(m_close)})
        button->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
    m_close->setToolTip(tr("Dismiss this notice (Esc)"));
    m_close->setAccessibleName(tr("Dismiss this notice"));
    connect(m_reload, &QAbstractButton::clicked, this, &ChangedFilesBar::reload);
    connect(m_close, &QAbstractButton::clicked, this, &ChangedFilesBar::dismiss);
}

// --- The files
// -----------------------------------------------------------------------------------------------

void ChangedFilesBar::setSources(const XDataSourcesManager* sources) {
    m_sources = sources;
    m_registrations.clear();
    m_dismissed.clear();
    if (sources != nullptr)
        for (const char* name : {Notifications::dataSourceWasAdded, Notifications::dataSourceWasRemoved})
            m_registrations.push_back(NotificationCenter::defaultCenter().observe(
                name, nullptr, [this](QObject*) { observeSources(); }));
    observeSources();
}

void ChangedFilesBar::observeSources() {
    static constexpr const char* keys[] = {"isChangedOnDisk"};
    m_observations.clear();
    const auto former =
        std::exchange(m_dismissed, {}); // without those that went: another may come to lie there
    if (m_sources != nullptr)
        for (const XDataSource& source : m_sources->dataSources())
            if (qobject_cast<XPTextFile*>(source.get()) != nullptr) {
                m_observations.emplace_back(*source, keys,
                                            [this](const KeyChange& change) { fileChanged(change); });
                if (former.contains(source.get()))
                    m_dismissed.insert(source.get());
            }
    showOffered();
}

void ChangedFilesBar::fileChanged(const KeyChange& change) {
    m_dismissed.erase(change.object); // that was the change before
    showOffered();
}

std::vector<XDataSource> ChangedFilesBar::offered() const {
    std::vector<XDataSource> found;
    if (m_sources != nullptr)
        std::ranges::copy_if(
            m_sources->dataSources(), std::back_inserter(found), [this](const XDataSource& source) {
                const auto* file = qobject_cast<const XPTextFile*>(source.get());
                return file != nullptr && file->isChangedOnDisk() && !m_dismissed.contains(file);
            });
    return found;
}

void ChangedFilesBar::reload() {
    for (const XDataSource& source : offered())
        source->read();
}

void ChangedFilesBar::dismiss() {
    for (const XDataSource& source : offered())
        m_dismissed.insert(source.get());
    showOffered();
}

// --- The notice
// ----------------------------------------------------------------------------------------------

void ChangedFilesBar::showOffered() {
    const std::vector<XDataSource> files = offered();
    m_name = files.size() == 1 ? files.front()->title() : QString();
    const QString said = files.empty()       ? QString()
                         : files.size() == 1 ? tr("“%1” changed on the disk.").arg(m_name)
                                             : tr("%1 data files changed on the disk.").arg(files.size());
    const QString before = std::exchange(m_text, said);
    if (said == before)
        return;
    if (before.isEmpty() || said.isEmpty())
        fold(said.isEmpty());
    else
        layOut();
    update();
    if (said.isEmpty())
        return;
    setAccessibleName(said);
    m_reload->setToolTip(said);
    m_reload->setAccessibleDescription(said);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void ChangedFilesBar::fold(bool folded) {
    if (m_folding != nullptr)
        m_folding->stop();
    m_box->setVisible(!folded);
    const int from = height();
    const int to = folded ? 0 : openHeight();
    m_folding = Animation::run(*this, foldMilliseconds, QEasingCurve::OutQuad, [this, from, to](double part) {
        setFixedHeight(from + static_cast<int>(part * (to - from)));
    });
}

QRect ChangedFilesBar::textRoom() const {
    return {outside + textLeft, outside + inside, std::max(1, width() - 2 * outside - textLeft - 10), 1000};
}

QString ChangedFilesBar::fittingText() const {
    QString text = m_text;
    if (!m_name.isEmpty())
        text.replace(m_name, fontMetrics().elidedText(
                                 m_name, Qt::ElideMiddle,
                                 textRoom().width() - fontMetrics().horizontalAdvance(QStringLiteral("“”"))));
    return text;
}

int ChangedFilesBar::openHeight() const {
    const int text = fontMetrics().boundingRect(textRoom(), Qt::TextWordWrap, fittingText()).height();
    return 2 * outside + 3 * inside + std::max(text, 16) + m_reload->sizeHint().height();
}

void ChangedFilesBar::layOut() {
    if (!m_text.isEmpty() && m_folding == nullptr && height() != openHeight())
        setFixedHeight(openHeight());
    const int boxHeight = openHeight() - 2 * outside;
    m_box->setGeometry(outside, outside, width() - 2 * outside, std::clamp(height() - outside, 0, boxHeight));
    const QSize size = m_reload->sizeHint();
    m_reload->setGeometry({QPoint(textLeft, boxHeight - inside - size.height()), size});
    const QSize cross = m_close->sizeHint();
    m_close->setGeometry(
        {QPoint(m_box->width() - 10 - cross.width(), m_reload->y() + (size.height() - cross.height()) / 2),
         cross});
}

void ChangedFilesBar::resizeEvent(QResizeEvent*) {
    layOut();
}

void ChangedFilesBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        layOut();
}

void ChangedFilesBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !m_text.isEmpty())
        dismiss();
    else
        QWidget::keyPressEvent(event);
}

void ChangedFilesBar::paintEvent(QPaintEvent*) {
    if (m_text.isEmpty())
        return;
    QPainter painter(this);
    painter.fillRect(QRectF(0, 0, width(), StylePainting::hairline(painter)), currentColors().line);
    const NoticeColors colors = NoticeColors::current(false);
    const QRect box(outside, outside, width() - 2 * outside, openHeight() - 2 * outside);
    StylePainting::drawBox(painter, box, 4, colors.fill, colors.edge);
    StylePainting::drawIcon(painter, QRectF(box.x() + 10, box.y() + inside, 16, 16), QStringLiteral("warn"),
                            colors.text);
    painter.setPen(colors.text);
    painter.drawText(textRoom(), Qt::TextWordWrap, fittingText());
}
