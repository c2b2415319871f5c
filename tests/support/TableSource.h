// A data source that holds the table a test gives it.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/XViewController.h"

#include <initializer_list>
#include <vector>

namespace support {

inline XTable makeTable(const std::vector<std::vector<double>>& columns) {
    auto table = std::make_shared<XPTableData>();
    for (std::size_t col = 0; col < columns.size(); ++col) {
        for (std::size_t row = 0; row < columns[col].size(); ++row)
            table->writeValueAtColRow(columns[col][row], col, row);
    }
    return table;
}

class TableSource : public XDataSourceProtocol {
  public:
    explicit TableSource(XTable table = {}) : m_table(std::move(table)) {}

    QString pluginIdentifier() const override { return QStringLiteral("test.table"); }
    QString pluginName() const override { return QStringLiteral("Table"); }
    std::optional<QVariantMap> plist() const override { return std::nullopt; }
    void setPlist(const QVariantMap&) override {}
    bool read() override {
        ++reads;
        return true;
    }
    void clean() override { setData(nullptr); }
    bool isLoading() const override { return false; }
    XTable data() const override {
        const std::scoped_lock lock(m_mutex);
        return m_table;
    }
    void setData(XTable table) override {
        {
            const std::scoped_lock lock(m_mutex);
            m_table = std::move(table);
        }
        NotificationCenter::defaultCenter().post(Notifications::dataSourceUpdated, this);
    }
    QStringList columnNames() const override { return {QStringLiteral("Row number")}; }
    const QString& title() const override { return m_title; }
    void setTitle(QString title) override { m_title = std::move(title); }
    std::span<const char* const> kvoKeys() const override { return {}; }
    const QString& readError() const override { return m_error; }
    std::unique_ptr<XViewController> configViewController() override { return nullptr; }
    std::mutex& tableMutex() const override { return m_mutex; }

    int reads = 0;

  private:
    mutable std::mutex m_mutex;
    XTable m_table;
    QString m_title;
    QString m_error;
};

} // namespace support
