// Questions and bad news in a small window over the one they belong to.
#pragma once

#include <QList>
#include <QString>

#include <functional>

class QWidget;

struct Alert {
    enum class Kind { Question, Fault, Notice };
    enum class Role { Accept, Destructive, Cancel, Other };
    struct Button {
        QString text;
        Role role;

        bool operator==(const Button&) const = default;
    };

    Kind kind;
    QString message; ///< names the thing
    QString reason;
    QList<Button> buttons; ///< the default one first; Escape answers Cancel, or the only one
};

/// How alerts reach the user. Main thread.
class Alerts {
  public:
    using Answered = std::function<void(int button)>;

    virtual ~Alerts() = default;

    static Alerts& shared();
    /// Puts another way in its place, which is not owned; null brings the windows back.
    static void setShared(Alerts* alerts);

    /// Returns at once; `answered` gets the index of the pressed button. It is not called when `window`, over
    /// which the alert stands, is destroyed first.
    virtual void ask(QWidget* window, const Alert& alert, Answered answered) = 0;

    /// Runs the event loop until the answer is there. An alert that went away unanswered counts as Escape.
    int askAndWait(QWidget* window, const Alert& alert);
    /// Tells a fault that has nothing to choose.
    void tell(QWidget* window, const QString& message, const QString& reason);
};
