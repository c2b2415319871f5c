// Quoting for each of the languages, and the lines around the options.
#include "CommandLineTexts.h"

#include "CommandLine.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int helpColumn = 24;

/// Whatever argument the option takes is a file's name.
bool takesFile(const OptionDescription& option) {
    return option.argument == u"FILE"_qs;
}

QString roff(QString text) {
    text.replace(u'\\', u"\\e"_qs).replace(u'-', u"\\-"_qs);
    return text.startsWith(u'.') || text.startsWith(u'\'') ? u"\\&"_qs + text : text;
}

/// In single quotes, as bash and zsh read them.
QString quoted(QString text) {
    return u'\'' + text.replace(u'\'', u"'\\''"_qs) + u'\'';
}

QString fishQuoted(QString text) {
    return u'\'' + text.replace(u'\\', u"\\\\"_qs).replace(u'\'', u"\\'"_qs) + u'\'';
}

QString ofEachOption(QString (*line)(const OptionDescription& option)) {
    QString lines;
    for (const OptionGroup& group : commandLineOptions()) {
        for (const OptionDescription& option : group.options)
            lines += line(option);
    }
    return lines;
}

QString bashCase(const OptionDescription& option) {
    if (option.argument.isEmpty())
        return {};
    QString action;
    if (takesFile(option))
        action = u"_filedir; "_qs;
    else if (!option.choices.isEmpty())
        action = u"COMPREPLY=($(compgen -W "_qs + quoted(option.choices.join(u' ')) + u" -- \"$cur\")); "_qs;
    return u"        "_qs + option.name + u") "_qs + action + u"return ;;\n"_qs;
}

QString zshSpecification(const OptionDescription& option) {
    QString help = option.help;
    help.replace(u'\\', u"\\\\"_qs).replace(u'[', u"\\["_qs).replace(u']', u"\\]"_qs);
    if (option.argument.isEmpty())
        return u"    "_qs + quoted(option.name + u'[' + help + u']') + u" \\\n"_qs;
    QString argument = option.argument;
    const QString action = takesFile(option)          ? u"_files"_qs
                           : option.choices.isEmpty() ? u" "_qs
                                                      : u'(' + option.choices.join(u' ') + u')';
    return u"    "_qs +
           quoted(u'*' + option.name + u"=["_qs + help + u"]:"_qs + argument.replace(u':', u"\\:"_qs) + u':' +
                  action) +
           u" \\\n"_qs;
}

QString fishLine(const OptionDescription& option) {
    QString kind;
    if (takesFile(option))
        kind = u" -r -F"_qs;
    else if (!option.argument.isEmpty())
        kind = u" -x"_qs;
    if (!option.choices.isEmpty())
        kind += u" -a "_qs + fishQuoted(option.choices.join(u' '));
    return u"complete -c velquin -l "_qs + option.name.mid(2) + kind + u" -d "_qs + fishQuoted(option.help) +
           u'\n';
}

} // namespace

QString CommandLineTexts::help() {
    QString text =
        u"Usage: velquin [OPTIONS] [FILE...]\n\nPlots large numeric and time-series tables. A FILE is a "
        "document (a property list, or *.mox) or a\ntext with numbers; without outputs, each opens in a window.\n"_qs;
    for (const OptionGroup& group : commandLineOptions()) {
        text += u'\n' + group.title + u'\n';
        for (const OptionDescription& option : group.options) {
            const QString left = (u"  "_qs + option.name + u' ' + option.argument).leftJustified(helpColumn);
            text += left + option.help + u'\n';
        }
    }
    return text + u"\nExit status: 0 done, 1 the work failed, 2 wrong usage.\n"_qs;
}

QString CommandLineTexts::manualSections() {
    QString text;
    for (const OptionGroup& group : commandLineOptions()) {
        text += u".SS "_qs + roff(group.title.chopped(1)) + u'\n';
        for (const OptionDescription& option : group.options) {
            text += u".TP\n\\fB"_qs + roff(option.name) + u"\\fR"_qs;
            if (!option.argument.isEmpty())
                text += u" \\fI"_qs + roff(option.argument) + u"\\fR"_qs;
            text += u'\n' + roff(option.help) + u'\n';
        }
    }
    return text;
}

QString CommandLineTexts::bashCompletion() {
    const QString names = ofEachOption([](const OptionDescription& option) { return option.name + u' '; });
    return uR"(# bash completion for velquin                             -*- shell-script -*-

_velquin() {
    local cur prev words cword split
    _init_completion -s || return
    case $prev in
)"_qs + ofEachOption(bashCase) +
           uR"(    esac
    $split && return
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W ')"_qs +
           names.trimmed() + uR"(' -- "$cur"))
    else
        _filedir
    fi
} &&
    complete -F _velquin velquin
)"_qs;
}

QString CommandLineTexts::zshCompletion() {
    return u"#compdef velquin\n\n_arguments -S \\\n"_qs + ofEachOption(zshSpecification) +
           u"    '*:FILE:_files'\n"_qs;
}

QString CommandLineTexts::fishCompletion() {
    return u"# fish completion for velquin\n"_qs + ofEachOption(fishLine);
}
