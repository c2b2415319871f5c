// The program's start: command line, application object, then a batch run or windows.
#include "BatchRun.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/PlotView/PlotText.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "Classes/SingleInstance/InstanceServer.h"
#include "CommandLine.h"
#include "CommandLineTexts.h"
#include "Core/Assertions.h"
#include "EmbeddedPlugins/SourceViews.h"
#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/FreedMemory.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"
#include "Product.h"
#include "WindowRun.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

namespace {

constexpr int exitFailed = 1;
constexpr int exitWrongUsage = 2;

/// The toolkit gets the choice of a style, and none of its other options: some are called like ours.
struct Arguments {
    Arguments(int argc, char** argv) : toolkits{argv[0]} {
        for (int i = 1; i < argc; ++i) {
            const char* name = std::strncmp(argv[i], "--", 2) == 0 ? argv[i] + 1 : argv[i];
            const bool takesNext = std::strcmp(name, "-style") == 0 && i + 1 < argc;
            if (!takesNext && std::strncmp(name, "-style=", 7) != 0) {
                ours += QFile::decodeName(argv[i]);
                continue;
            }
            toolkits.push_back(argv[i]);
            if (takesNext)
                toolkits.push_back(argv[++i]);
        }
        toolkitsCount = static_cast<int>(toolkits.size());
        toolkits.push_back(nullptr);
    }

    QStringList ours;
    std::vector<char*> toolkits; ///< must outlive the application object
    int toolkitsCount;
};

void print(const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stdout);
}

/// Standard error holds one line on what failed; what the toolkit thinks of its surroundings is not part of
/// it.
void writeOwnMessages(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const bool isOwn =
        context.category != nullptr && std::strcmp(context.category, velquinLog().categoryName()) == 0;
    if (isOwn || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

/// What every run needs once there is an application object.
void setUpProgram() {
    setAssertionReporter([](const AssertionFailure& failure) {
        qCWarning(velquinLog, "assertion: %s (%s:%d)", failure.what(), failure.sourcePath.c_str(),
                  failure.line);
    });
    installFontSubstitutions();
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
}

/// Evaluations end while the main thread's loop still serves them.
struct EvaluatorEnd {
    EvaluatorEnd() = default;
    ~EvaluatorEnd() { XExpressionEvaluator::shutDown(); }
    EvaluatorEnd(const EvaluatorEnd&) = delete;
    EvaluatorEnd& operator=(const EvaluatorEnd&) = delete;
};

int runWithoutWindow(Arguments& arguments, const CommandLine& line) {
    qInstallMessageHandler(writeOwnMessages);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(arguments.toolkitsCount, arguments.toolkits.data());
    const MainThreadLoop mainThreadLoop;
    setUpProgram();
    UserDefaults::standard().setReadOnly(true);
    const EvaluatorEnd evaluatorEnd;
    return runBatch(line);
}

/// Without one the toolkit ends the program with a signal.
bool isDisplayThere() {
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

/// Tells what became of a command line that another process has carried out.
int endAsTold(const InstanceReply& reply) {
    for (const QString& error : reply.errors)
        reportFailure({}, error);
    return reply.exitCode;
}

/// The first process of a user's display opens the files of all later ones.
InstanceClaim claimDisplay(const std::optional<InstancePlace>& place, const QStringList& arguments) {
    const InstanceRequest request{.workingFolder = QDir::currentPath(),
                                  .activationToken = qEnvironmentVariable("XDG_ACTIVATION_TOKEN"),
                                  .startupId = qEnvironmentVariable("DESKTOP_STARTUP_ID"),
                                  .arguments = arguments};
    // Relative names mean nothing without a folder, which may have been removed.
    if (!place || !QDir::isAbsolutePath(request.workingFolder))
        return IsAlone{};
    return claimInstance(*place, request);
}

int runWithWindows(Arguments& arguments, const CommandLine& line) {
    qInstallMessageHandler(writeOwnMessages);
    const bool userChoseStyle =
        Appearance::userChoseStyle(arguments.toolkitsCount, arguments.toolkits.data());
    if (!isDisplayThere()) {
        reportFailure({}, QStringLiteral("there is no display to open a window on"));
        return exitFailed;
    }
    const std::optional<InstancePlace> place = instancePlace(InstanceSurroundings::current());
    InstanceClaim claim = claimDisplay(place, arguments.ours);
    if (const auto* reply = std::get_if<InstanceReply>(&claim))
        return endAsTold(*reply);
    QGuiApplication::setDesktopFileName(QLatin1String(Product::id));
    const Application application(arguments.toolkitsCount, arguments.toolkits.data());
    // Made before the documents and gone after them: whoever comes next finds their files written.
    std::optional<InstanceServer> server;
    if (auto* first = std::get_if<IsFirst>(&claim))
        server.emplace(*place, std::move(first->lock));
    Appearance::instance().install(userChoseStyle);
    Appearance::instance().followDesktop();
    QApplication::setWindowIcon(Pictures::applicationIcon());
    const MainThreadLoop mainThreadLoop;
    setUpProgram();
    installSourceViews();
    FileWatcher fileWatcher;
    FileWatcher::setShared(&fileWatcher);
    const AssertionScope editsGoOn(AssertionPolicy::ReportOnly);
    const EvaluatorEnd evaluatorEnd;
    return runWindows(line, server ? &*server : nullptr);
}

int runProgram(Arguments arguments) {
    QCoreApplication::setApplicationName(QStringLiteral("velquin"));
    QCoreApplication::setApplicationVersion(QLatin1String(Product::version));
    const auto parsed = parseCommandLine(arguments.ours);
    if (const auto* wrong = std::get_if<UsageError>(&parsed)) {
        reportFailure({}, wrong->reason + QStringLiteral(" (see velquin --help)"));
        return exitWrongUsage;
    }
    const auto& line = std::get<CommandLine>(parsed);
    if (line.help) {
        print(CommandLineTexts::help());
        return 0;
    }
    if (line.version) {
        print(QStringLiteral("velquin %1\n").arg(QLatin1String(Product::version)));
        return 0;
    }
    return line.hasOutputs() ? runWithoutWindow(arguments, line) : runWithWindows(arguments, line);
}

} // namespace

int main(int argc, char** argv) {
    FreedMemory::goesBackToTheSystem();
    try {
        return runProgram(Arguments(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velquin: %s\n", error.what());
    } catch (...) {
        std::fputs("velquin: unknown fault\n", stderr);
    }
    return exitFailed;
}
