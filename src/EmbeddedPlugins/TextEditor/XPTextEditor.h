// The data source whose text is typed or pasted into the document.
#pragma once

#include "EmbeddedPlugins/TextFile/XPTextFile.h"

class XPTextEditor : public XPTextFile {
    Q_OBJECT
    /// Absent: reading fails without a reason and the table stays. Empty: reading gives an empty table.
    OBSERVED(std::optional<QString>, textData, setTextData, {})

  public:
    static constexpr const char* identifier = "com.quarnix.texteditor";
    static constexpr const char* name = "Text Editor";

    using ConfigViewMaker = std::function<std::unique_ptr<XViewController>(XPTextEditor&)>;
    static void setConfigViewMaker(ConfigViewMaker maker);

    explicit XPTextEditor(QObject* parent = nullptr);
    ~XPTextEditor() override;

    QString pluginIdentifier() const override;
    QString pluginName() const override;
    std::optional<QVariantMap> plist() const override;
    void setPlist(const QVariantMap& settings) override;
    std::span<const char* const> kvoKeys() const override;
    std::span<const char* const> contentKeys() const override;
    std::unique_ptr<XViewController> configViewController() override;

  protected:
    bool initReadData() override;
    std::unique_ptr<QIODevice> createInputStream() override;
};
