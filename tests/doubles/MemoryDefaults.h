#pragma once

#include "settings/UserDefaultsSettingsStore.h"

#include <QStringList>

#include <map>

namespace tickwise::test {

/// Defaults in memory that count their writes and can be told to fail them.
class MemoryDefaults : public SettingsDataStorage
{
public:
    std::map<QString, QByteArray> entries;
    int writes = 0;
    bool fails = false;
    QStringList refusedKeys;

    std::optional<QByteArray> data(const QString &key) const override
    {
        const auto entry = entries.find(key);
        return entry == entries.end() ? std::nullopt : std::optional(entry->second);
    }

    Result<void> setData(const QString &key, const std::optional<QByteArray> &data) override
    {
        ++writes;
        if (fails)
            return failure(FileError{QStringLiteral("/defaults"), QStringLiteral("disk full")});
        entries.erase(key);
        if (data)
            entries.emplace(key, *data);
        return {};
    }

    void keepBeforeOverwriting(const QString &key) override { refusedKeys.append(key); }
};

} // namespace tickwise::test
