// Settings and input of a text that the document holds.
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"

#include "Classes/PlotModel/PlistValues.h"
#include "Platform/Core/XViewController.h"

#include <QBuffer>

#include <array>
#include <utility>

namespace {

XPTextEditor::ConfigViewMaker& editorViewMaker() {
    static XPTextEditor::ConfigViewMaker maker;
    return maker;
}

QString defaultTitle() {
    return QStringLiteral("Editor");
}

} // namespace

XPTextEditor::XPTextEditor(QObject* parent) : XPTextFile(parent) {
    XPTextFile::setTitle(defaultTitle());
}

XPTextEditor::~XPTextEditor() = default;

void XPTextEditor::setConfigViewMaker(ConfigViewMaker maker) {
    editorViewMaker() = std::move(maker);
}

std::unique_ptr<XViewController> XPTextEditor::configViewController() {
    return editorViewMaker() ? editorViewMaker()(*this) : nullptr;
}

QString XPTextEditor::pluginIdentifier() const {
    return QLatin1String(identifier);
}

QString XPTextEditor::pluginName() const {
    return QLatin1String(name);
}

std::span<const char* const> XPTextEditor::kvoKeys() const {
    static constexpr std::array<const char*, 2> keys{"delimiterType", "extractColumnNames"};
    return keys;
}

std::span<const char* const> XPTextEditor::contentKeys() const {
    static constexpr std::array<const char*, 2> keys{"textData", "title"};
    return keys;
}

std::optional<QVariantMap> XPTextEditor::plist() const {
    QVariantMap settings{{QStringLiteral("Title"), title()},
                         {QStringLiteral("DelimiterType"), qint64{delimiterType()}},
                         {QStringLiteral("ExtractColumnNames"), extractColumnNames()}};
    if (textData())
        settings.insert(QStringLiteral("Text"), *textData());
    return settings;
}

void XPTextEditor::setPlist(const QVariantMap& settings) {
    setTextData(PlistValues::string(settings.value(QStringLiteral("Text"))));
    setDelimiterType(PlistValues::integer(settings.value(QStringLiteral("DelimiterType"))));
    setExtractColumnNames(PlistValues::boolean(settings.value(QStringLiteral("ExtractColumnNames"))));
    setTitle(PlistValues::string(settings.value(QStringLiteral("Title"))).value_or(defaultTitle()));
}

bool XPTextEditor::initReadData() {
    setReadError(QString());
    return true;
}

std::unique_ptr<QIODevice> XPTextEditor::createInputStream() {
    if (!textData())
        return nullptr;
    auto stream = std::make_unique<QBuffer>();
    stream->setData(textData()->toUtf8());
    setInputStreamLength(static_cast<std::uint64_t>(stream->size()));
    return stream;
}
