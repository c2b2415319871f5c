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
#include "WindowRun.h"

#include <QApplication>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstring>

namespace {

constexpr int exitFailed = 1;
constexpr int exitWrongUsage = 2;
/// What the toolkit is given of the command line: it has options of its own that are called like ours.
constexpr int onlyTheName = 1;

QStringList argumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments += QFile::decodeName(argv[i]);
    return arguments;
}

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

int runWithoutWindow(char** argv, const CommandLine& line) {
    qInstallMessageHandler(writeOwnMessages);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = onlyTheName;
    const QGuiApplication application(argc, argv);
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

int runWithWindows(char** argv, const CommandLine& line) {
    qInstallMessageHandler(writeOwnMessages);
    const bool userChoseStyle = Appearance::userChoseStyle(onlyTheName, argv); // by the environment
    if (!isDisplayThere()) {
        reportFailure({}, QStringLiteral("there is no display to open a window on"));
        return exitFailed;
    }
    int argc = onlyTheName;
    const Application application(argc, argv);
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

int runProgram(int argc, char** argv) {
    QCoreApplication::setApplicationName(QStringLiteral("velquin"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELQUIN_VERSION));
    const auto parsed = parseCommandLine(argumentsOf(argc, argv));
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
        print(QStringLiteral("velquin " VELQUIN_VERSION "\n"));
        return 0;
    }
    return line.hasOutputs() ? runWithoutWindow(argv, line) : runWithWindows(argv, line);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velquin: %s\n", error.what());
    } catch (...) {
        std::fputs("velquin: unknown fault\n", stderr);
    }
    return exitFailed;
}
