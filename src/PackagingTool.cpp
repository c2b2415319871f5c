// The tool that makes, at build time, the installed files that come from the program's own sources: manual
// page, completions of the shells, small icons.
#include "CommandLineTexts.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>

#include <cstdio>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error((path + QStringLiteral(": ") + file.errorString()).toStdString());
    return file.readAll();
}

void write(const QString& path, const std::function<bool(QIODevice&)>& writeTo) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !writeTo(file) || !file.commit())
        throw std::runtime_error((path + QStringLiteral(": ") + file.errorString()).toStdString());
}

void writeText(const QString& path, const QByteArray& text) {
    write(path, [&](QIODevice& device) { return device.write(text) == text.size(); });
}

void drawIcon(const QString& output, const QString& drawing, int side) {
    QSvgRenderer renderer(contentOf(drawing));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    if (!renderer.isValid() || image.isNull())
        throw std::runtime_error("no icon can be drawn from " + drawing.toStdString());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    write(output, [&](QIODevice& device) { return image.save(&device, "PNG"); });
}

QByteArray manualPage(QByteArray text) {
    const QByteArray place = ".\\\" The sections of the options come here.\n";
    if (!text.contains(place))
        throw std::runtime_error("the manual page has no place for the options");
    return text.replace(place, CommandLineTexts::manualSections().toUtf8());
}

/// tool FORM OUTPUT [INPUT [SIZE]]
void run(const QStringList& arguments) {
    static const std::map<QString, QString (*)()> completions{
        {QStringLiteral("bash"), CommandLineTexts::bashCompletion},
        {QStringLiteral("zsh"), CommandLineTexts::zshCompletion},
        {QStringLiteral("fish"), CommandLineTexts::fishCompletion}};
    const QString form = arguments.value(0);
    const QString output = arguments.value(1);
    if (const auto found = completions.find(form); found != completions.end())
        writeText(output, found->second().toUtf8());
    else if (form == QStringLiteral("man"))
        writeText(output, manualPage(contentOf(arguments.value(2))));
    else if (form == QStringLiteral("icon"))
        drawIcon(output, arguments.value(2), arguments.value(3).toInt());
    else
        throw std::runtime_error("usage: man|bash|zsh|fish|icon OUTPUT [INPUT [SIZE]]");
}

} // namespace

int main(int argc, char** argv) {
    try {
        QStringList arguments;
        for (int i = 1; i < argc; ++i)
            arguments += QFile::decodeName(argv[i]);
        run(arguments);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velquin_packaging_tool: %s\n", error.what());
        return 1;
    }
}
