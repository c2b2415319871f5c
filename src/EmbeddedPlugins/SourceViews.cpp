// One maker a kind of data source.
#include "EmbeddedPlugins/SourceViews.h"

#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditorConfig.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFileConfig.h"

namespace {

template <class Page, class Source>
std::unique_ptr<XViewController> makePage(Source& source) {
    auto page = std::make_unique<Page>();
    page->setPlugin(&source);
    return page;
}

} // namespace

void installSourceViews() {
    XPTextFile::setConfigViewMaker(makePage<XPTextFileConfig, XPTextFile>);
    XPTextEditor::setConfigViewMaker(makePage<XPTextEditorConfig, XPTextEditor>);
}
