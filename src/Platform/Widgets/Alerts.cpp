// Alerts as message boxes that block their window only.
#include "Platform/Widgets/Alerts.h"

#include <QAbstractButton>
#include <QEventLoop>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr int widestReason = 360;

Alerts* theAlerts = nullptr;

QMessageBox::ButtonRole boxRole(Alert::Role role) {
    switch (role) {
    case Alert::Role::Accept:
        return QMessageBox::AcceptRole;
    case Alert::Role::Destructive:
        return QMessageBox::DestructiveRole;
    case Alert::Role::Cancel:
        return QMessageBox::RejectRole;
    case Alert::Role::Other:
        break;
    }
    return QMessageBox::ActionRole;
}

QMessageBox::Icon boxIcon(Alert::Kind kind) {
    switch (kind) {
    case Alert::Kind::Fault:
        return QMessageBox::Critical;
    case Alert::Kind::Notice:
        return QMessageBox::Information;
    case Alert::Kind::Question:
        break;
    }
    return QMessageBox::Warning;
}

/// The index that Escape answers.
int escapeIndex(const Alert& alert) {
    for (qsizetype i = 0; i < alert.buttons.size(); ++i) {
        if (alert.buttons[i].role == Alert::Role::Cancel)
            return static_cast<int>(i);
    }
    return 0;
}

/// A bold message, and a reason in lines of a readable length. The toolkit names the labels so.
void layOut(QMessageBox& box) {
    if (auto* message = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont bold = message->font();
        bold.setBold(true);
        message->setFont(bold);
    }
    if (auto* reason = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        const int width = reason->fontMetrics().horizontalAdvance(reason->text());
        reason->setMinimumWidth(std::min(width + 2, widestReason));
    }
    box.layout()->setContentsMargins(20, 20, 16, 16);
}

class MessageBoxAlerts : public Alerts {
  public:
    void ask(QWidget* window, const Alert& alert, Answered answered) override {
        auto* box = new QMessageBox(window);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setIcon(boxIcon(alert.kind));
        box->setWindowTitle(QStringLiteral("Velquin"));
        box->setTextFormat(Qt::PlainText); // names may hold anything
        box->setText(alert.message);
        box->setInformativeText(alert.reason);
        layOut(*box);
        QList<QAbstractButton*> buttons;
        for (const Alert::Button& button : alert.buttons)
            buttons.append(box->addButton(button.text, boxRole(button.role)));
        const int escape = escapeIndex(alert);
        box->setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
        box->setEscapeButton(buttons[escape]);
        QObject::connect(box, &QDialog::finished, box,
                         [box, buttons, escape, answered = std::move(answered)] {
                             const qsizetype pressed = buttons.indexOf(box->clickedButton());
                             answered(pressed < 0 ? escape : static_cast<int>(pressed));
                         });
        box->open();
    }
};

} // namespace

Alerts& Alerts::shared() {
    static MessageBoxAlerts boxes;
    return theAlerts != nullptr ? *theAlerts : boxes;
}

void Alerts::setShared(Alerts* alerts) {
    theAlerts = alerts;
}

int Alerts::askAndWait(QWidget* window, const Alert& alert) {
    // The answer may come after this has returned, if the alert's window went first.
    struct Wait {
        QEventLoop loop;
        int answer;
        bool isAnswered = false;
    };
    const auto wait = std::make_shared<Wait>();
    wait->answer = escapeIndex(alert);
    ask(window, alert, [wait](int button) {
        wait->answer = button;
        wait->isAnswered = true;
        wait->loop.quit();
    });
    if (window != nullptr)
        QObject::connect(window, &QObject::destroyed, &wait->loop, &QEventLoop::quit);
    if (!wait->isAnswered)
        wait->loop.exec();
    return wait->answer;
}

void Alerts::tell(QWidget* window, const QString& message, const QString& reason) {
    ask(window, {Alert::Kind::Fault, message, reason, {{QMessageBox::tr("OK"), Alert::Role::Accept}}},
        [](int) {});
}
