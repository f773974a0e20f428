#include <termios.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <iostream>
#include <string>

#include "cli/Cli.h"
#include "publish/PublishDestination.h"
#include "publish/PublishRecord.h"
#include "publish/Publisher.h"

namespace cli {

namespace {

const char* const kHelp =
    "Usage: orvella publish OUT DESTINATION [OPTIONS]\n"
    "       orvella publish OUT --list\n"
    "\n"
    "Sends the site in the output folder OUT to a web server. DESTINATION is\n"
    "sftp://USER@HOST[:PORT]/PATH, ftp://[USER@]HOST[:PORT]/PATH or "
    "ftps://[USER@]HOST[:PORT]/PATH\n"
    "(FTP with TLS required). An SFTP path starting with /~/ is in the home folder; an FTP path\n"
    "starts in the folder the login lands in. Spaces and other letters may be typed as they are\n"
    "or percent-encoded.\n"
    "\n"
    "Only what is new or changed since the last publish of OUT to DESTINATION is sent: images and\n"
    "other files first, then stylesheets and scripts, then pages. Each file goes to a temporary\n"
    "name and is renamed into place, so visitors never see a file cut short, and a publish that\n"
    "was stopped is completed by the next one. What was sent is recorded in OUT/.orvella-publish\n"
    "(never a password); that record, the run record and temporary files are never sent.\n"
    "\n"
    "SFTP logs in with the key file (--identity, else the first of ~/.ssh/id_ed25519, id_ecdsa\n"
    "and id_rsa), the SSH agent, then the password of --password-stdin. The server's host key\n"
    "must be in ~/.ssh/known_hosts. Progress (files, bytes, time left) is shown on a terminal;\n"
    "a summary line is printed at the end.\n"
    "\n"
    "Options:\n"
    "  --list             print when each destination last received OUT, and what\n"
    "  --dry-run          print what would be sent and removed; nothing is sent and the server\n"
    "                     is not contacted\n"
    "  --delete           then remove from the server the files that earlier publishes of OUT\n"
    "                     sent there and the site no longer has; nothing else is ever removed\n"
    "  --identity FILE    the private key file of the SFTP login\n"
    "  --password-stdin   read the password from the first line of standard input (asked for\n"
    "                     without echo on a terminal); it also unlocks the key file\n"
    "  --accept-host-key  trust a host key that ~/.ssh/known_hosts does not hold yet and add it\n"
    "                     there (compare its fingerprint first); a changed key is never accepted\n"
    "  --verbose          print one line per file sent or removed (and the diagnostic log)\n"
    "\n"
    "Exit codes: 0 the server holds the whole site, 1 a file could not be sent or removed, the\n"
    "connection failed or a run was writing into OUT (each is named on stderr), 2 wrong usage or\n"
    "a refusal (no such output folder, an unknown or changed host key, a refused login).\n";

const QString kPrefix = QStringLiteral("orvella publish");

int usage(Io& io, const QString& message) {
    io.err << kPrefix << ": " << message << "\n";
    return kUsage;
}

QString megabytes(qint64 bytes) {
    return QString::number(double(bytes) / 1e6, 'f', 1) + QStringLiteral(" MB");
}

// The first line of standard input; asked for without echo when it is a terminal.
QString readPassword(Io& io, const QString& prompt) {
    const bool terminal = ::isatty(STDIN_FILENO) != 0;
    termios saved{};
    if (terminal && ::tcgetattr(STDIN_FILENO, &saved) == 0) {
        termios quiet = saved;
        quiet.c_lflag &= ~tcflag_t(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
        io.err << prompt;
        io.err.flush();
    }
    std::string line;
    std::getline(std::cin, line);
    if (terminal) {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
        io.err << "\n";
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const QString password = QString::fromUtf8(line.data(), qsizetype(line.size()));
    std::fill(line.begin(), line.end(), '\0');
    return password;
}

// The progress line on a terminal: files, bytes and time left, drawn at most ten times a second.
class ProgressLine {
  public:
    explicit ProgressLine(Io& io) : io_(io) { clock_.start(); }
    void show(const Publisher::Progress& p) {
        if (!io_.errIsTerminal || (drawn_.isValid() && drawn_.elapsed() < 100)) return;
        drawn_.start();
        QString left = QStringLiteral("--:--");
        const qint64 ms = clock_.elapsed();
        if (p.bytesDone > 0 && ms > 1000) {
            const qint64 seconds = (p.bytesTotal - p.bytesDone) * ms / p.bytesDone / 1000;
            left = QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
        }
        io_.err << "\r\033[K" << p.filesDone << "/" << p.filesTotal << " files, "
                << megabytes(p.bytesDone) << " of " << megabytes(p.bytesTotal) << ", " << left
                << " left";
        io_.err.flush();
        shown_ = true;
    }
    void clear() {
        if (!shown_) return;
        io_.err << "\r\033[K";
        io_.err.flush();
        shown_ = false;
    }

  private:
    Io& io_;
    QElapsedTimer clock_, drawn_;
    bool shown_ = false;
};

int list(const QString& folder, Io& io) {
    QString error;
    const PublishRecord record = PublishRecord::read(folder, &error);
    if (!error.isEmpty()) {
        io.err << kPrefix << ": " << error << "\n";
        return kFailed;
    }
    if (record.destinations().isEmpty())
        io.out << "Nothing was published from " << QDir::toNativeSeparators(folder) << " yet.\n";
    for (const PublishRecord::Destination& d : record.destinations()) {
        qint64 bytes = 0;
        for (const PublishRecord::File& file : d.files) bytes += file.size;
        const std::optional<PublishDestination> parsed = PublishDestination::parse(d.key, &error);
        const QString display = parsed ? parsed->display() : d.key;
        io.out << display << "\t"
               << (d.time.isValid() ? d.time.toUTC().toString(u"yyyy-MM-dd HH:mm:ss 'UTC'")
                                    : QStringLiteral("never finished"))
               << "\t" << (d.complete ? "complete" : "incomplete") << "\t" << d.files.size()
               << " files, " << megabytes(bytes) << " on the server\tlast sent " << d.sent
               << ", removed " << d.removed << "\n";
    }
    return kOk;
}

int publish(const QStringList& args, Io& io) {
    QStringList positional;
    bool showList = false;
    Publisher::Options options;
    bool passwordFromStdin = false;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == u"--list") {
            showList = true;
        } else if (a == u"--dry-run") {
            options.dryRun = true;
        } else if (a == u"--delete") {
            options.removeOld = true;
        } else if (a == u"--identity") {
            if (i + 1 >= args.size()) return usage(io, "--identity needs a key FILE");
            options.credentials.identity = args[++i];
            if (!QFileInfo(options.credentials.identity).isFile())
                return usage(io, "no such key file: " + options.credentials.identity);
        } else if (a == u"--password-stdin") {
            passwordFromStdin = true;
        } else if (a == u"--accept-host-key") {
            options.credentials.acceptHostKey = true;
        } else if (a.startsWith(u"--")) {
            return usage(io, "unknown option " + a);
        } else {
            positional.append(a);
        }
    }
    if (positional.isEmpty()) return usage(io, "the output folder OUT is required");
    const QFileInfo out(positional.first());
    if (!out.isDir()) return usage(io, "no such output folder: " + positional.first());
    const QString folder = out.absoluteFilePath() + u'/';
    if (showList) {
        if (positional.size() > 1) return usage(io, "--list takes the output folder alone");
        return list(folder, io);
    }
    if (positional.size() != 2)
        return usage(io, positional.size() < 2 ? "the DESTINATION is required"
                                               : "publish takes OUT and one DESTINATION");
    QString error;
    const std::optional<PublishDestination> destination =
        PublishDestination::parse(positional[1], &error);
    if (!destination) return usage(io, error);
    if (passwordFromStdin)
        options.credentials.password =
            readPassword(io, "Password for " + destination->display() + ": ");

    ProgressLine progress(io);
    Publisher::Callbacks callbacks;
    callbacks.progress = [&](const Publisher::Progress& p) { progress.show(p); };
    if (io.verbose || options.dryRun)
        callbacks.file = [&](const QString& line) {
            progress.clear();
            io.out << line << "\n";
            io.out.flush();
        };
    const Publisher::Result result = Publisher::publish(folder, *destination, options, callbacks);
    progress.clear();

    for (const QString& warning : result.warnings) io.err << "warning: " << warning << "\n";
    for (const QString& failure : result.skipped + result.failures)
        io.err << kPrefix << ": " << failure << "\n";
    using Failure = ServerConnection::Failure;
    if (result.refusal == Failure::HostKeyUnknown)
        io.err << kPrefix << ": if that is the server's key (ask its administrator), publish "
               << "again with --accept-host-key to trust it.\n";
    if (result.refusal == Failure::LoginRefused && options.credentials.password.isEmpty())
        io.err << kPrefix << ": give the password with --password-stdin"
               << (destination->isSftp() ? ", or a key with --identity" : "") << ".\n";
    if (result.refusal != Failure::None) return kUsage;
    if (!options.dryRun && !result.connected) return kFailed;
    if (options.dryRun) {
        io.out << "dry run: " << result.toSend.size() << " to send, " << result.toRemove.size()
               << " to remove, " << result.unchanged << " unchanged\n";
        return kOk;
    }
    io.out << destination->display() << ": " << result.sent.size() << " sent, "
           << result.removed.size() << " removed, " << result.unchanged << " unchanged"
           << (result.complete ? "; the server holds the whole site\n"
                               : "; the server does not hold the whole site yet\n");
    return result.complete && result.failures.isEmpty() && result.skipped.isEmpty() ? kOk : kFailed;
}

}  // namespace

Command publishCommand() {
    return {QStringLiteral("publish"),
            QStringLiteral("send an output folder to a web server (SFTP, FTP), only what changed"),
            QString::fromUtf8(kHelp), publish};
}

}  // namespace cli
