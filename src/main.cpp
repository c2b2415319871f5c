// The program's start: command line, application object, then a batch run or windows.
#include "BatchRun.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/PlotView/PlotText.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "CommandLine.h"
#include "Core/Assertions.h"
#include "EmbeddedPlugins/SourceViews.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"
#include "Product.h"
#include "WindowRun.h"

#include <QApplication>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstring>
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

int runWithWindows(Arguments& arguments, const CommandLine& line) {
    qInstallMessageHandler(writeOwnMessages);
    const bool userChoseStyle =
        Appearance::userChoseStyle(arguments.toolkitsCount, arguments.toolkits.data());
    if (!isDisplayThere()) {
        reportFailure({}, QStringLiteral("there is no display to open a window on"));
        return exitFailed;
    }
    const Application application(arguments.toolkitsCount, arguments.toolkits.data());
    Appearance::instance().install(userChoseStyle);
    Appearance::instance().followDesktop();
    QApplication::setWindowIcon(Pictures::applicationIcon());
    const MainThreadLoop mainThreadLoop;
    setUpProgram();
    installSourceViews();
    const AssertionScope editsGoOn(AssertionPolicy::ReportOnly);
    const EvaluatorEnd evaluatorEnd;
    return runWindows(line);
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
        print(commandLineHelp());
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
    try {
        return runProgram(Arguments(argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velquin: %s\n", error.what());
    } catch (...) {
        std::fputs("velquin: unknown fault\n", stderr);
    }
    return exitFailed;
}
