// Hands typed text over with a delay, and puts the halves side by side or one over the other.
#include "EmbeddedPlugins/TextEditor/XPTextEditorConfig.h"

#include "Core/Assertions.h"
#include "Core/ClampToInt.h"
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/TextEditor/LongTextEdit.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Widgets/Binding.h"
#include "Platform/Widgets/ThemeColors.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_XPTextEditorConfig.h"

#include <QKeyEvent>
#include <QTextDocument>

#include <array>
#include <string_view>

namespace {

constexpr std::array<const char*, 1> textKeys{"textData"};
constexpr int transferMilliseconds = 1000;
constexpr int leastWidthSideBySide = 860;
constexpr int editorFontPixels = 13;
constexpr int tabStop = 8; ///< characters

/// The tab bar shows the title: an empty one is no choice.
ValueTransform visibleText() {
    return {{},
            [](const QVariant& text) -> std::optional<QVariant> {
                return text.toString().trimmed().isEmpty() ? std::nullopt : std::optional(text);
            },
            XPTextEditorConfig::tr("The tab needs a title")};
}

} // namespace

XPTextEditorConfig::XPTextEditorConfig(QObject* parent)
    : SourcePage(parent), m_ui(std::make_unique<Ui::XPTextEditorConfig>()),
      m_editorFont(QStringLiteral("Courier New")) {
    m_ui->setupUi(view());
    setOutlets(
        {m_ui->dataTable, m_ui->parsedDataLabel, m_ui->countLabel, m_ui->delimiterBox, m_ui->headerBox});
    awakeFromNib();
}

XPTextEditorConfig::~XPTextEditorConfig() {
    deleteView();
}

void XPTextEditorConfig::awakeFromNib() {
    m_editorFont.setPixelSize(editorFontPixels);
    for (QLabel* label : {m_ui->titleLabel, m_ui->delimiterLabel})
        label->setForegroundRole(labelRole);
    QFont bold = m_ui->textLabel->font();
    bold.setBold(true);
    m_ui->textLabel->setFont(bold);
    m_ui->hintLabel->setFont(VelquinStyle::smallFont(m_ui->hintLabel->font()));
    m_ui->hintLabel->setForegroundRole(hintRole);
    m_ui->textView->setFont(m_editorFont);
    m_ui->textView->setTabStopDistance(tabStop *
                                       QFontMetricsF(m_editorFont).horizontalAdvance(QLatin1Char(' ')));
    m_ui->textView->document()->setDocumentMargin(7);
    m_ui->textView->installEventFilter(this);
    view()->installEventFilter(this);
    m_transfer.setSingleShot(true);
    m_transfer.setInterval(transferMilliseconds);
    connect(&m_transfer, &QTimer::timeout, this, [this] {
        if (view() != nullptr && m_ui->textView->isTakingText())
            m_transfer.start();
        else
            transferTextToPlugin();
    });
    connect(m_ui->textView, &QPlainTextEdit::textChanged, this, &XPTextEditorConfig::textDidChange);
    connect(m_ui->textView, &LongTextEdit::textTaken, this, &XPTextEditorConfig::showTaking);
    connect(m_ui->dataTable, &PreviewTableView::refreshRequested, this, &SourcePage::refreshDataTable);
    refreshDataTable();
}

LongTextEdit* XPTextEditorConfig::textView() const {
    return m_ui->textView;
}

XPTextEditor* XPTextEditorConfig::editor() const {
    return qobject_cast<XPTextEditor*>(plugin());
}

void XPTextEditorConfig::setPlugin(XPTextEditor* plugin) {
    m_transfer.stop();
    m_textObservation.end();
    observePlugin(plugin);
    if (plugin != nullptr) {
        bind(m_ui->titleField, *plugin, "title", visibleText());
        m_textObservation = Observation(*plugin, textKeys, [this](const KeyChange&) { showText(); });
    }
    showText();
}

void XPTextEditorConfig::observeValueForKeyPath(const KeyChange& change) {
    if (change.key == std::string_view("title"))
        xAssert(MainThread::isCurrent(), "UI operation not from main thread!");
    SourcePage::observeValueForKeyPath(change);
}

void XPTextEditorConfig::onBecameVisible() {
    if (view() != nullptr && m_ui->textView->document()->isEmpty())
        m_ui->textView->setFocus();
}

QString XPTextEditorConfig::emptyText() const {
    return tr("Type or paste lines of numbers, and their values are shown here");
}

// ---- The text

/// Shows a text that did not come from here.
void XPTextEditorConfig::showText() {
    if (m_handingOver || view() == nullptr)
        return;
    m_transfer.stop();
    m_showingText = true;
    m_ui->textView->showText(editor() == nullptr ? QString() : editor()->textData().value_or(QString()));
    m_showingText = m_ui->textView->isTakingText();
}

/// A long text comes in over a while.
void XPTextEditorConfig::showTaking(double part) {
    const bool taking = m_ui->textView->isTakingText();
    m_ui->hintLabel->setText(taking ? tr("Taking the text… %1 %").arg(clampToInt(part * 100))
                                    : tr("Read again one second after the last key"));
    if (!taking)
        m_showingText = false;
}

void XPTextEditorConfig::textDidChange() {
    if (!m_showingText)
        m_transfer.start();
}

void XPTextEditorConfig::transferTextToPlugin() {
    m_transfer.stop();
    if (editor() == nullptr || view() == nullptr)
        return;
    m_ui->textView->takeRest();
    m_transfer.stop(); // started again by the rest
    m_handingOver = true;
    editor()->setTextData(m_ui->textView->toPlainText());
    m_handingOver = false;
    editor()->read();
}

void XPTextEditorConfig::commitPendingEdits() {
    SourcePage::commitPendingEdits();
    if (m_transfer.isActive()) // a text that is still being pasted keeps it active
        transferTextToPlugin();
}

/// As after a pause. A long text that is being pasted comes when it is in.
void XPTextEditorConfig::handOverQuietly() {
    if (m_transfer.isActive() && view() != nullptr && !m_ui->textView->isTakingText())
        transferTextToPlugin();
}

bool XPTextEditorConfig::eventFilter(QObject* object, QEvent* event) {
    if (object == view() && event->type() == QEvent::Resize)
        arrangeHalves();
    if (object == m_ui->textView && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F6) { // where no window has taken it to jump between its regions
            const bool back = key->modifiers().testFlag(Qt::ShiftModifier);
            (back ? static_cast<QWidget*>(m_ui->headerBox) : m_ui->dataTable)->setFocus(Qt::TabFocusReason);
            return true;
        }
    }
    return SourcePage::eventFilter(object, event);
}

void XPTextEditorConfig::arrangeHalves() {
    const bool beside = view()->width() >= leastWidthSideBySide;
    const Qt::Orientation wanted = beside ? Qt::Horizontal : Qt::Vertical;
    const bool first = m_ui->halves->property("arranged").isNull();
    if (m_ui->halves->orientation() == wanted && !first)
        return;
    m_ui->halves->setProperty("arranged", true);
    m_ui->halves->setOrientation(wanted);
    m_ui->halves->setSizes(beside ? QList<int>{1000, 1000} : QList<int>{4000, 6000});
}
