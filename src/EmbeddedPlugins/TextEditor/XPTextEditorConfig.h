// The settings view of the text editor: the text beside the table that is read from it.
#pragma once

#include "EmbeddedPlugins/Common/SourcePage.h"

#include <QFont>
#include <QTimer>

#include <memory>

class LongTextEdit;
class QSplitter;
class XPTextEditor;

namespace Ui {
class XPTextEditorConfig;
}

/// Text is read again a while after the last key, or when `commitPendingEdits` asks for it.
class XPTextEditorConfig : public SourcePage {
    Q_OBJECT

  public:
    explicit XPTextEditorConfig(QObject* parent = nullptr);
    ~XPTextEditorConfig() override;

    void setPlugin(XPTextEditor* plugin);
    /// Ties the controls; called once, by the constructor.
    void awakeFromNib();

    LongTextEdit* textView() const;
    const QFont& editorFont() const { return m_editorFont; }

    /// The text changed: has it handed over once no further change came for a while.
    void textDidChange();
    /// Hands the text to the source and reads it.
    void transferTextToPlugin();
    /// How long text waits; a second at first.
    void setTransferDelay(int milliseconds) { m_transfer.setInterval(milliseconds); }
    void commitPendingEdits() override;
    void handOverQuietly() override;

    /// A page without a text waits for it.
    void onBecameVisible() override;

  protected:
    void observeValueForKeyPath(const KeyChange& change) override;
    QString emptyText() const override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    XPTextEditor* editor() const;
    void showText();
    void showTaking(double part);
    void arrangeHalves();

    std::unique_ptr<Ui::XPTextEditorConfig> m_ui;
    QFont m_editorFont;
    QTimer m_transfer;
    Observation m_textObservation;
    bool m_showingText = false; ///< the text comes from the source, not from the user
    bool m_handingOver = false; ///< the other way round
};
