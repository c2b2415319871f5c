// A document file: it is refused or loaded, and what was loaded is saved and loaded again as the same. Data
// files are not read: that would wait for the event loop.
#include "Classes/PluginsManager/XPluginsManager.h"
#include "Core/Assertions.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "FuzzedBytes.h"
#include "MoxDocument.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/PropertyList.h"
#include "Platform/Core/UserDefaults.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {

struct Program {
    Program() : application(count, names) {
        QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
        setAssertionReporter([](const AssertionFailure&) {});
        UserDefaults::standard().useMemoryStore();
        XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
    }

    int count = 1;
    char name[5] = "fuzz";
    char* names[2] = {name, nullptr};
    QCoreApplication application;
    MainThreadLoop loop;
};

/// The document as it would be saved; absent when the list was refused.
std::optional<QByteArray> savedAgain(const QVariant& list) {
    MoxDocument document;
    const AssertionScope scope(AssertionPolicy::Throw);
    std::optional<QByteArray> saved;
    try {
        document.loadFromPlist(list);
        saved = PropertyList::writeXml(document.plist());
    } catch (const AssertionFailure&) {
        saved.reset();
    }
    document.close();
    return saved;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static Program program;
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const PropertyList::ReadResult list = PropertyList::read(text);
    if (!list.value)
        return 0;
    const std::optional<QByteArray> first = savedAgain(*list.value);
    if (!first)
        return 0;
    // Loading fills in what was missing, and a curve without a source moves those behind it up: after the
    // second time nothing moves any more.
    const std::optional<QByteArray> second = savedAgain(*PropertyList::read(*first).value);
    require(second.has_value());
    return 0;
}
