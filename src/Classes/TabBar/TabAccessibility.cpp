// Roles, names, states and the press action of tabs.
#include "Classes/TabBar/TabAccessibility.h"

#include "Classes/TabBar/QXTabBar.h"
#include "Classes/TabBar/QXTabBarItem.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace {

class AccessibleTab : public QAccessibleWidget {
  public:
    explicit AccessibleTab(QXTabBarItem* tab) : QAccessibleWidget(tab, QAccessible::PageTab), m_tab(tab) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = m_tab->isSelected();
        return state;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction() && m_tab->delegate() != nullptr)
            m_tab->delegate()->onClick(*m_tab);
    }

  private:
    QXTabBarItem* m_tab;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (auto* tab = qobject_cast<QXTabBarItem*>(object))
        return new AccessibleTab(tab);
    if (auto* bar = qobject_cast<QXTabBar*>(object))
        return new QAccessibleWidget(bar, QAccessible::PageTabList);
    return nullptr;
}

} // namespace

void installTabAccessibility() {
    static const bool installed = (QAccessible::installFactory(makeInterface), true);
    Q_UNUSED(installed)
}
