#!/usr/bin/env python3
"""Writes orvella's manual page and bash completion from the program's own help texts.

Usage: cli-docs.py ORVELLA_BINARY --man OUT.1.gz --completion OUT

Everything comes from running the built program: `orvella --help` gives the commands and global
options, `orvella COMMAND --help` the text of each command, its first words (verbs such as
"get" or output kinds such as "gallery") and its options, `orvella settings KIND` the setting
names. Nothing is listed here by hand, so the manual and the completion follow the program.
"""

import argparse
import gzip
import os
import re
import shlex
import subprocess
import sys
import tempfile

PLACEHOLDER = r"[A-Z][A-Z0-9_]*(?:=[A-Z][A-Z0-9_]*)?"
CHOICES = r"[a-z0-9]+(?:\|[a-z0-9]+)+"
OPTION = re.compile(r"(?<![\w-])(--[a-z][a-z0-9-]*)(?:[ =](%s|%s)(?![\w|=]))?" % (PLACEHOLDER, CHOICES))
TERM_LINE = re.compile(r"^( *)(\S.*?\S|\S) {2,}(\S.*)$")
HEADING = re.compile(r"^([A-Z][A-Za-z ]{0,30}):$")
WORD = re.compile(r"[a-z][a-z0-9-]*(?:\|[a-z][a-z0-9-]*)*")


# ------------------------------------------------------------ the program ---

class Program:
    def __init__(self, binary):
        self.binary = binary

    def run(self, *args, check=True):
        done = subprocess.run([self.binary, *args], capture_output=True, text=True)
        if check and done.returncode != 0:
            sys.exit("cli-docs: `orvella %s` exited with %d:\n%s"
                     % (" ".join(args), done.returncode, done.stderr))
        return done.stdout if done.returncode == 0 else None


def blocks(text):
    """The paragraphs of a help text: lists of lines, split at blank lines."""
    result, current = [], []
    for line in text.rstrip("\n").split("\n"):
        if line.strip():
            current.append(line.rstrip())
        elif current:
            result.append(current)
            current = []
    if current:
        result.append(current)
    return result


def indent(line):
    return len(line) - len(line.lstrip(" "))


def usage_lines(text):
    """The forms of the first "Usage:" paragraph, without "Usage:" and the aligned indent."""
    for block in blocks(text):
        if block[0].startswith("Usage:"):
            return [block[0][len("Usage:"):].strip()] + [line.strip() for line in block[1:]]
    return []


def section_entries(text, heading):
    """(term, description) of a "Heading:" paragraph such as "Commands:" or "Options:"."""
    for block in blocks(text):
        if block[0] == heading + ":":
            return list_entries(block[1:])
    return []


def list_entries(lines):
    entries = []
    for line in lines:
        match = TERM_LINE.match(line)
        if match and (not entries or indent(line) <= entries[-1][2]):
            entries.append([match.group(2), match.group(3), indent(line)])
        elif entries:
            entries[-1][1] += " " + line.strip()
    return [(term, description) for term, description, _ in entries]


def first_words(help_text, command):
    """The literal words that follow `orvella COMMAND` in its usage forms ("get", "gallery")."""
    words = []
    for form in usage_lines(help_text):
        tokens = form.split()
        if len(tokens) > 2 and tokens[0] == "orvella" and tokens[1] == command \
                and WORD.fullmatch(tokens[2]):
            words += [w for w in tokens[2].split("|") if w not in words]
    return words


def options(text):
    """Every option named in a help text, with its argument placeholder or choices ("" if none).
    `Quoted` command lines are left out: they show other commands' options."""
    found = {}
    for match in OPTION.finditer(re.sub(r"`[^`]*`", "", text)):
        name, argument = match.group(1), match.group(2) or ""
        if argument or name not in found:
            found[name] = argument
    return found


class Cli:
    """What the help texts say about the command line."""

    def __init__(self, program):
        self.version = program.run("--version").strip()
        self.help = program.run("--help")
        self.commands = [(term.split()[0], summary)
                         for term, summary in section_entries(self.help, "Commands")]
        if not self.commands:
            sys.exit("cli-docs: `orvella --help` lists no commands")
        self.command_help = {name: program.run(name, "--help") for name, _ in self.commands}
        self.words = {name: first_words(text, name) for name, text in self.command_help.items()}
        # `orvella COMMAND --help` works for every command.
        self.options = {name: {**options(text), "--help": ""}
                        for name, text in self.command_help.items()}
        self.global_options = options(self.help)
        # Output kinds: the words `orvella settings` takes, or failing that the ones
        # `orvella generate` takes; kept when `orvella settings KIND` answers.
        candidates = self.words.get("settings", []) + self.words.get("generate", [])
        self.kinds, self.settings = [], {}
        if "settings" in self.command_help:
            for kind in dict.fromkeys(candidates):
                table = program.run("settings", kind, check=False)
                if table is None:
                    continue
                rows = [row.split("\t") for row in table.splitlines()[1:] if row.strip()]
                self.kinds.append(kind)
                self.settings[kind] = [row[0] for row in rows]


# ------------------------------------------------------------ manual page ---

def esc(text):
    """Text for roff: backslashes and dashes escaped."""
    return text.replace("\\", "\\e").replace("-", "\\-")


def line(text):
    """A text line: one starting with a control character would be read as a request."""
    return "\\&" + text if text[:1] in (".", "'") else text


def inline(text):
    """Prose with `quoted commands` set in bold."""
    parts = re.split(r"`([^`]*)`", text)
    return "".join(esc(p) if i % 2 == 0 else "\\fB" + esc(p) + "\\fR" for i, p in enumerate(parts))


def synopsis(text):
    """A usage form: literal words and options bold, PLACEHOLDERS italic, punctuation plain."""
    out = []
    for token in re.findall(r"[A-Z][A-Z0-9_]*|--?[a-z][a-z0-9-]*|[a-z][a-z0-9-]*|\s+|.", text):
        if re.fullmatch(r"[A-Z][A-Z0-9_]*", token):
            out.append("\\fI" + esc(token) + "\\fR")
        elif re.fullmatch(r"--?[a-z][a-z0-9-]*|[a-z][a-z0-9-]*", token):
            out.append("\\fB" + esc(token) + "\\fR")
        else:
            out.append(esc(token))
    return "".join(out)


def help_body(text, skip_usage=False):
    """A command's help text as man markup: usage forms, lists as tagged paragraphs, prose."""
    out = []
    for block in blocks(text):
        if block[0].startswith("Usage:"):
            if not skip_usage:
                forms = [block[0][len("Usage:"):].strip()] + [f.strip() for f in block[1:]]
                out.append(".PP")
                out.append("\n.br\n".join(line(synopsis(form)) for form in forms))
            continue
        lines = block
        heading = HEADING.match(lines[0])
        if heading:
            out += [".PP", "\\fB" + esc(heading.group(1)) + "\\fR"]
            lines = lines[1:]
        prose, term_indent, column = [], None, None
        for text in lines:
            match = TERM_LINE.match(text)
            if match and len(match.group(2)) > 40:
                match = None
            if not match and term_indent is not None and indent(text) == term_indent \
                    and text[column - 1:column] == " " and text[column:column + 1].strip():
                # A term that fills its column leaves one space before the description.
                match = TERM_LINE.match(text[:column] + " " + text[column:])
            if match and (term_indent is None or indent(text) <= term_indent):
                if prose:
                    out += [".PP", line(inline(" ".join(prose)))]
                    prose = []
                term_indent, column = indent(text), match.start(3)
                out += [".TP", line(synopsis(match.group(2))), line(inline(match.group(3)))]
            elif term_indent is not None and indent(text) > term_indent:
                out[-1] += " " + inline(text.strip())
            else:
                term_indent = None
                prose.append(text.strip())
        if prose:
            out += [".PP", line(inline(" ".join(prose)))]
    return out


def manual(cli):
    intro = " ".join(line.strip() for line in blocks(cli.help)[0])
    summary = re.sub(r"^Orvella\s+\S*\d\S*\s+", "", intro).rstrip(".")
    version = cli.version
    forms = [re.split(r" {2,}", form, maxsplit=1) for form in usage_lines(cli.help)]
    lines = [
        '.\\" Written by packaging/cli-docs.py from the help texts of %s.' % esc(version),
        '.TH ORVELLA 1 "" "%s" "User Commands"' % esc(version),
        ".nh",
        ".ad l",
        ".SH NAME",
        "orvella \\- " + esc(summary),
        ".SH SYNOPSIS",
        "\n.br\n".join(line(synopsis(form[0])) for form in forms),
        ".SH DESCRIPTION",
        line(inline(intro)),
    ]
    for form in forms:
        if len(form) == 2:
            lines += [".TP", line(synopsis(form[0])), line(inline(form[1]))]
    lines += [".SH COMMANDS"]
    for name, summary_text in cli.commands:
        lines += [".SS orvella %s" % esc(name),
                  line(inline(summary_text[:1].upper() + summary_text[1:]) + ".")]
        lines += help_body(cli.command_help[name])
    if cli.kinds:
        lines += [".SH OUTPUT KINDS", ".PP",
                  inline("Output kinds: %s. `orvella settings KIND` lists the settings of a kind: "
                         "their names, aliases, kinds, defaults and items."
                         % ", ".join(cli.kinds))]
    entries = section_entries(cli.help, "Options")
    if entries:
        lines += [".SH OPTIONS"]
        for term, description in entries:
            lines += [".TP", line(synopsis(term)), line(inline(description))]
    lines += [".SH EXIT STATUS", ".PP",
              "0 when everything asked for was done, 1 on a failure, 2 on wrong usage or a refused "
              "run; each command's section gives the details."]
    return "\n".join(lines) + "\n"


# ------------------------------------------------------------- completion ---

def bash_words(words):
    return shlex.quote(" ".join(words))


def completion(cli):
    def argument_class(argument):
        if not argument:
            return ""
        if "|" in argument:
            return "choices:" + argument.replace("|", " ")
        if "=" in argument:
            return "setting"
        if re.search(r"DIR|FOLDER", argument):
            return "dir"
        if re.search(r"FILE|PHOTO|PROJECT|PATH", argument):
            return "file"
        return "value"

    out = ["# bash completion for orvella, written by packaging/cli-docs.py from the help texts",
           "# of %s." % cli.version, ""]
    out.append("_orvella_commands=%s" % bash_words(name for name, _ in cli.commands))
    out.append("_orvella_global_options=%s" % bash_words(cli.global_options))
    out.append("declare -A _orvella_words=(%s)" % " ".join(
        "[%s]=%s" % (name, bash_words(words)) for name, words in cli.words.items()))
    out.append("declare -A _orvella_options=(%s)" % " ".join(
        "[%s]=%s" % (name, bash_words(opts)) for name, opts in cli.options.items()))
    arguments = []
    for name, opts in cli.options.items():
        for option, argument in opts.items():
            if argument:
                arguments.append("[%s]=%s" % (shlex.quote(name + " " + option),
                                              shlex.quote(argument_class(argument))))
    out.append("declare -A _orvella_arguments=(%s)" % " ".join(arguments))
    out.append("declare -A _orvella_settings=(%s)" % " ".join(
        "[%s]=%s" % (kind, bash_words(names)) for kind, names in cli.settings.items()))
    out.append(r'''
_orvella() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
    local command=${COMP_WORDS[1]} kind=${COMP_WORDS[2]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        if [[ $cur == -* ]]; then
            COMPREPLY=($(compgen -W "$_orvella_global_options" -- "$cur"))
        else
            # A command, or photos, folders and projects to open in the window.
            compopt -o filenames 2>/dev/null
            COMPREPLY=($(compgen -W "$_orvella_commands" -- "$cur") $(compgen -f -- "$cur"))
        fi
        return
    fi
    if [[ -z ${_orvella_options[$command]+set} ]]; then
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$cur"))
        return
    fi
    # NAME=VALUE: '=' breaks words, so a value being typed follows "NAME" "=".
    if [[ $prev == "=" ]] && ((COMP_CWORD >= 3)) && [[ ${COMP_WORDS[COMP_CWORD-3]} == --* ]]; then
        return
    fi
    local argument=${_orvella_arguments["$command $prev"]}
    case $argument in
    setting)
        compopt -o nospace 2>/dev/null
        COMPREPLY=($(compgen -W "${_orvella_settings[$kind]}" -S "=" -- "$cur"))
        return ;;
    choices:*)
        COMPREPLY=($(compgen -W "${argument#choices:}" -- "$cur"))
        return ;;
    dir)
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -d -- "$cur"))
        return ;;
    file)
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$cur"))
        return ;;
    value)
        return ;;
    esac
    if ((COMP_CWORD == 2)) && [[ $cur != -* && -n ${_orvella_words[$command]} ]]; then
        COMPREPLY=($(compgen -W "${_orvella_words[$command]}" -- "$cur"))
    elif [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "${_orvella_options[$command]}" -- "$cur"))
    else
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$cur"))
    fi
}
complete -F _orvella orvella''')
    return "\n".join(out) + "\n"


# ---------------------------------------------------------------- writing ---

def write_whole(path, data):
    """Writes the file under a temporary name beside it and renames it into place."""
    folder = os.path.dirname(os.path.abspath(path))
    os.makedirs(folder, exist_ok=True)
    handle, temporary = tempfile.mkstemp(prefix=".tmp-", dir=folder)
    try:
        with os.fdopen(handle, "wb") as f:
            f.write(data)
            f.flush()
            os.fsync(f.fileno())
        os.chmod(temporary, 0o644)
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("binary")
    parser.add_argument("--man", help="the manual page to write, gzip-compressed")
    parser.add_argument("--completion", help="the bash completion script to write")
    args = parser.parse_args()
    cli = Cli(Program(args.binary))
    if args.man:
        page = manual(cli).encode("utf-8")
        # mtime 0 and no file name: the same help texts give the same bytes.
        write_whole(args.man, gzip.compress(page, compresslevel=9, mtime=0))
    if args.completion:
        write_whole(args.completion, completion(cli).encode("utf-8"))


if __name__ == "__main__":
    main()
