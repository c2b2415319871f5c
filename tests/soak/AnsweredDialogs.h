// Alerts and file panels that answer themselves by chance, at once or in a later turn.
#pragma once

#include "Platform/Widgets/Alerts.h"
#include "Platform/Widgets/FilePanels.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <utility>

/// `below(n)` is a random number from 0 to n - 1; `chooses` names the paths of a panel.
class AnsweredDialogs : public Alerts, public FilePanels {
  public:
    using Below = std::function<unsigned(unsigned)>;
    using Chooses = std::function<QStringList(const FilePanel&)>;

    AnsweredDialogs(Below below, Chooses chooses) : m_below(std::move(below)), m_chooses(std::move(chooses)) {
        Alerts::setShared(this);
        FilePanels::setShared(this);
    }
    ~AnsweredDialogs() override {
        Alerts::setShared(nullptr);
        FilePanels::setShared(nullptr);
    }
    AnsweredDialogs(const AnsweredDialogs&) = delete;
    AnsweredDialogs& operator=(const AnsweredDialogs&) = delete;

    void ask(QWidget* window, const Alert& alert, Answered answered) override {
        const auto button = static_cast<int>(m_below(static_cast<unsigned>(alert.buttons.size())));
        answer(window, [answered = std::move(answered), button] { answered(button); });
    }
    void choose(QWidget* window, const FilePanel& panel, Chosen chosen) override {
        answer(window, [chosen = std::move(chosen), paths = m_chooses(panel)] { chosen(paths); });
    }

  private:
    /// Nobody is answered when the window went first.
    void answer(QWidget* window, std::function<void()> tell) {
        if (window == nullptr || m_below(2) == 0)
            tell();
        else
            QTimer::singleShot(0, window, std::move(tell));
    }

    Below m_below;
    Chooses m_chooses;
};
