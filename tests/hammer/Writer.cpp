// A program to be killed while it writes: hammer_writer save FILE | autosave FOLDER. It writes one document
// over and over, titled with the number of the time, and prints each number that is written.
#include "Classes/PluginsManager/XPluginsManager.h"
#include "Classes/Recovery/AutosaveController.h"
#include "Classes/Recovery/AutosaveFolder.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/UserDefaults.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// So large that a write takes its time.
void fill(MoxDocument& document) {
    document.textDropped(u"1 2 3\n"_s.repeated(50'000));
    document.addNewCurve();
}

[[noreturn]] void writeForEver(MoxDocument& document, const std::function<bool()>& write) {
    for (int number = 1;; ++number) {
        document.setPlotAreaTitle(u"number %1"_s.arg(number, 9, 10, QLatin1Char('0')));
        if (!write())
            std::exit(EXIT_FAILURE);
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}

[[noreturn]] void save(const QString& path) {
    MoxDocument document;
    fill(document);
    writeForEver(document, [&] { return !document.writeToURL(path); });
}

/// First takes what an earlier run left, as a start of the program does, and prints how many that were.
[[noreturn]] void autosave(const QString& folder) {
    const std::vector<LeftAutosave> left = AutosaveFolder::takeLeft(folder);
    for (const LeftAutosave& each : left) {
        MoxDocument document;
        if (document.restore(each.record.document)) // gives a reason
            std::exit(EXIT_FAILURE);
        each.file->remove();
    }
    std::printf("took %zu\n", left.size());
    DocumentController documents;
    constexpr AutosaveIntervals never{std::chrono::hours(1), std::chrono::hours(1)};
    AutosaveController autosaves(documents, folder, never);
    MoxDocument& document = documents.newDocument().document();
    fill(document);
    writeForEver(document, [&] { return autosaves.writeAll(false).isEmpty(); });
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const MainThreadLoop loop;
    UserDefaults::standard().useMemoryStore();
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return EXIT_FAILURE;
    arguments[1] == u"save"_s ? save(arguments[2]) : autosave(arguments[2]);
}
