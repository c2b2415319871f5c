// One kind of axis: its identifier in documents, its name in menus, and how it is made.
#pragma once

#include <QString>

#include <memory>

class XAxis;

/// Immutable; lives in XAxisManager's table for ever, so a pointer to it stands for the kind.
class XAxisInfo {
  public:
    using Maker = std::unique_ptr<XAxis> (*)();

    XAxisInfo(QString typeId, QString title, Maker maker);

    const QString& typeId() const { return m_typeId; }
    const QString& title() const { return m_title; }
    std::unique_ptr<XAxis> makeAxis() const; ///< a new axis without range and length

  private:
    QString m_typeId;
    QString m_title;
    Maker m_maker;
};
