#include "publish/ServerConnection.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <openssl/crypto.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <mutex>

#include "services/Log.h"

namespace {

const QString kTemporaryMark = QStringLiteral(".orvella-tmp-publish-");
const QString kReplacedMark = QStringLiteral(".orvella-tmp-replaced-");

// A list of commands for CURLOPT_QUOTE and CURLOPT_POSTQUOTE, freed with the object.
class CommandList {
  public:
    CommandList() = default;
    CommandList(const CommandList&) = delete;
    CommandList& operator=(const CommandList&) = delete;
    ~CommandList() { curl_slist_free_all(list_); }
    void add(const QString& command) {
        list_ = curl_slist_append(list_, command.toUtf8().constData());
    }
    curl_slist* get() const { return list_; }

  private:
    curl_slist* list_ = nullptr;
};

// A path as an SFTP command of libcurl takes it: in double quotes, with " and \ escaped.
QString quoted(QString path) {
    path.replace(u'\\', QStringLiteral("\\\\"));
    path.replace(u'"', QStringLiteral("\\\""));
    return u'"' + path + u'"';
}

QString folderOf(const QString& relative) {
    const qsizetype slash = relative.lastIndexOf(u'/');
    return slash < 0 ? QString() : relative.left(slash + 1);
}

QString nameOf(const QString& relative) {
    return relative.mid(relative.lastIndexOf(u'/') + 1);
}

QString localUserName() {
    const passwd* pw = ::getpwuid(::getuid());
    return pw ? QString::fromLocal8Bit(pw->pw_name) : qEnvironmentVariable("USER");
}

// The key type an SSH public key blob names in its first field ("ssh-ed25519").
QString keyTypeOf(const QByteArray& blob) {
    if (blob.size() < 4) return QStringLiteral("unknown");
    const quint32 length = (quint32(quint8(blob[0])) << 24) | (quint32(quint8(blob[1])) << 16) |
                           (quint32(quint8(blob[2])) << 8) | quint32(quint8(blob[3]));
    if (length == 0 || length > quint32(blob.size() - 4)) return QStringLiteral("unknown");
    return QString::fromLatin1(blob.mid(4, length));
}

struct Reading {
    QFile* file = nullptr;
    QCryptographicHash hash{QCryptographicHash::Sha256};
    qint64 sent = 0;
    QString error;
};

size_t readFunction(char* buffer, size_t size, size_t count, void* data) {
    auto* r = static_cast<Reading*>(data);
    const qint64 got = r->file->read(buffer, qint64(size * count));
    if (got < 0) {
        r->error = r->file->errorString();
        return CURL_READFUNC_ABORT;
    }
    r->hash.addData(QByteArrayView(buffer, got));
    r->sent += got;
    return size_t(got);
}

// Nothing is downloaded; a listing that a request may bring is dropped.
size_t dropFunction(char*, size_t size, size_t count, void*) {
    return size * count;
}

int progressFunction(void* data, curl_off_t, curl_off_t, curl_off_t, curl_off_t uploaded) {
    const auto* progress = static_cast<const std::function<void(qint64)>*>(data);
    if (*progress) (*progress)(qint64(uploaded));
    return 0;
}

}  // namespace

struct ServerConnection::Private {
    PublishDestination destination;
    Credentials credentials;
    CURL* curl = nullptr;
    char errorBuffer[CURL_ERROR_SIZE] = {};
    QByteArray user, password, knownHosts, keyFile;
    // What the host key check saw.
    int keyMatch = -1;
    QString keyType, fingerprint, knownHostsError;
    // FTP: the folder the login lands in. Commands before a transfer run wherever the last
    // request left the session, so they name files from there.
    QString ftpEntry;

    static int keyFunction(CURL*, const curl_khkey*, const curl_khkey* found, curl_khmatch match,
                           void* data);
    bool addKnownHost(const QByteArray& blob);
    void configure(const QByteArray& url);
    Outcome perform(bool forFile);
};

void ServerConnection::releaseThread() {
    OPENSSL_thread_stop();
}

ServerConnection::ServerConnection(const PublishDestination& destination,
                                   const Credentials& credentials)
    : d(std::make_unique<Private>()) {
    static std::once_flag curlReady;
    std::call_once(curlReady, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    d->destination = destination;
    d->credentials = credentials;
    d->curl = curl_easy_init();
    d->user = (destination.user().isEmpty() && destination.isSftp() ? localUserName()
                                                                    : destination.user())
                  .toUtf8();
    d->password = credentials.password.toUtf8();
    d->knownHosts = QFile::encodeName(knownHostsFile());
    QString key = credentials.identity;
    for (const char* name : {"id_ed25519", "id_ecdsa", "id_rsa"}) {
        const QString candidate = QDir::homePath() + QStringLiteral("/.ssh/") + QLatin1String(name);
        if (key.isEmpty() && QFileInfo(candidate).isFile()) key = candidate;
    }
    d->keyFile = QFile::encodeName(key);
}

ServerConnection::~ServerConnection() {
    if (d->curl) curl_easy_cleanup(d->curl);
    d->password.fill('\0');
}

QString ServerConnection::knownHostsFile() const {
    return d->credentials.knownHosts.isEmpty()
               ? QDir::homePath() + QStringLiteral("/.ssh/known_hosts")
               : d->credentials.knownHosts;
}

QString ServerConnection::hostKey() const {
    return d->fingerprint.isEmpty() ? QString() : d->keyType + u' ' + d->fingerprint;
}

QString ServerConnection::temporaryName(const QString& fileName) {
    return kTemporaryMark + fileName;
}

QString ServerConnection::replacedName(const QString& fileName) {
    return kReplacedMark + fileName;
}

int ServerConnection::Private::keyFunction(CURL*, const curl_khkey*, const curl_khkey* found,
                                           curl_khmatch match, void* data) {
    auto* self = static_cast<Private*>(data);
    const QByteArray blob = found->len ? QByteArray(found->key, qsizetype(found->len))
                                       : QByteArray::fromBase64(found->key);
    self->keyMatch = match;
    self->keyType = keyTypeOf(blob);
    self->fingerprint =
        QStringLiteral("SHA256:") +
        QString::fromLatin1(QCryptographicHash::hash(blob, QCryptographicHash::Sha256)
                                .toBase64(QByteArray::OmitTrailingEquals));
    if (match == CURLKHMATCH_OK) return CURLKHSTAT_FINE;
    if (match == CURLKHMATCH_MISSING && self->credentials.acceptHostKey && self->addKnownHost(blob))
        return CURLKHSTAT_FINE;
    return CURLKHSTAT_REJECT;
}

// Appends the key in OpenSSH's form, as ssh does: one line, the rest of the file untouched.
bool ServerConnection::Private::addKnownHost(const QByteArray& blob) {
    const QString host =
        destination.port() == 22
            ? destination.host()
            : QStringLiteral("[%1]:%2").arg(destination.host()).arg(destination.port());
    QByteArray line = host.toUtf8() + ' ' + keyType.toLatin1() + ' ' + blob.toBase64() + '\n';
    const QString folder = QFileInfo(QFile::decodeName(knownHosts)).absolutePath();
    if (!QFileInfo::exists(folder)) ::mkdir(QFile::encodeName(folder).constData(), 0700);
    const int fd = ::open(knownHosts.constData(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        knownHostsError = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    char last = '\n';
    const off_t size = ::lseek(fd, 0, SEEK_END);
    if (size > 0 && ::pread(fd, &last, 1, size - 1) == 1 && last != '\n') line.prepend('\n');
    const bool ok = ::write(fd, line.constData(), size_t(line.size())) == line.size();
    if (!ok) knownHostsError = QString::fromLocal8Bit(std::strerror(errno));
    return ::close(fd) == 0 && ok;
}

void ServerConnection::Private::configure(const QByteArray& url) {
    curl_easy_reset(curl);
    errorBuffer[0] = '\0';
    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorBuffer);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &dropFunction);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 30L);
    // A connection that carries nothing for a minute has dropped.
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, 60L);
    if (!user.isEmpty()) curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
    if (!password.isEmpty()) curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    if (destination.isSftp()) {
        curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "sftp");
        long auth = CURLSSH_AUTH_PUBLICKEY | CURLSSH_AUTH_AGENT;
        if (!password.isEmpty()) auth |= CURLSSH_AUTH_PASSWORD | CURLSSH_AUTH_KEYBOARD;
        curl_easy_setopt(curl, CURLOPT_SSH_AUTH_TYPES, auth);
        if (!keyFile.isEmpty())
            curl_easy_setopt(curl, CURLOPT_SSH_PRIVATE_KEYFILE, keyFile.constData());
        if (!password.isEmpty()) curl_easy_setopt(curl, CURLOPT_KEYPASSWD, password.constData());
        curl_easy_setopt(curl, CURLOPT_SSH_KNOWNHOSTS, knownHosts.constData());
        curl_easy_setopt(curl, CURLOPT_SSH_KEYFUNCTION, &Private::keyFunction);
        curl_easy_setopt(curl, CURLOPT_SSH_KEYDATA, this);
    } else {
        curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "ftp");
        if (destination.protocol() == PublishDestination::Protocol::Ftps)
            curl_easy_setopt(curl, CURLOPT_USE_SSL, long(CURLUSESSL_ALL));
    }
}

ServerConnection::Outcome ServerConnection::Private::perform(bool forFile) {
    keyMatch = -1;
    const CURLcode code = curl_easy_perform(curl);
    if (code == CURLE_OK) return {};
    QString reason = QString::fromUtf8(errorBuffer).trimmed();
    if (reason.isEmpty()) reason = QString::fromUtf8(curl_easy_strerror(code));
    const QString server =
        destination.port() == 22 || destination.port() == 21
            ? destination.host()
            : QStringLiteral("%1 port %2").arg(destination.host()).arg(destination.port());
    klLog() << "publish:" << destination.display() << "libcurl error" << int(code) << reason;
    if (code == CURLE_PEER_FAILED_VERIFICATION && keyMatch == CURLKHMATCH_MISSING)
        return {Failure::HostKeyUnknown,
                knownHostsError.isEmpty()
                    ? QStringLiteral("the host key of %1 is not known: %2 %3")
                          .arg(server, keyType, fingerprint)
                    : QStringLiteral("the host key of %1 (%2 %3) could not be added to %4: %5")
                          .arg(server, keyType, fingerprint, QFile::decodeName(knownHosts),
                               knownHostsError)};
    if (code == CURLE_PEER_FAILED_VERIFICATION && keyMatch == CURLKHMATCH_MISMATCH)
        return {Failure::HostKeyChanged,
                QStringLiteral("the host key of %1 is not the one %2 holds for it: the server "
                               "offers %3 %4. Someone may be posing as the server; if its key "
                               "really changed, remove the old one with ssh-keygen -R.")
                    .arg(server, QFile::decodeName(knownHosts), keyType, fingerprint)};
    if (code == CURLE_LOGIN_DENIED)
        return {
            Failure::LoginRefused,
            QStringLiteral("%1 refused the login of %2 (%3)")
                .arg(server, user.isEmpty() ? QStringLiteral("anonymous") : QString::fromUtf8(user),
                     reason)};
    switch (code) {
        case CURLE_QUOTE_ERROR:
        case CURLE_UPLOAD_FAILED:
        case CURLE_REMOTE_ACCESS_DENIED:
        case CURLE_REMOTE_DISK_FULL:
        case CURLE_REMOTE_FILE_NOT_FOUND:
        case CURLE_REMOTE_FILE_EXISTS:
        case CURLE_READ_ERROR:
        case CURLE_ABORTED_BY_CALLBACK:
            if (forFile) return {Failure::File, reason};
            break;
        default:
            break;
    }
    return {Failure::Connection, QStringLiteral("no connection to %1: %2").arg(server, reason)};
}

ServerConnection::Outcome ServerConnection::open(const QStringList& unfinished) {
    d->configure(d->destination.url(QString()));
    curl_easy_setopt(d->curl, CURLOPT_NOBODY, 1L);
    CommandList commands;
    for (const QString& relative : unfinished) {
        const QString folder = d->destination.serverPath(folderOf(relative));
        const QString prefix = folder.isEmpty() || folder.endsWith(u'/') ? folder : folder + u'/';
        for (const QString& name :
             {temporaryName(nameOf(relative)), replacedName(nameOf(relative))}) {
            if (d->destination.isSftp())
                commands.add(QStringLiteral("*rm ") + quoted(prefix + name));
            else if (name.startsWith(kTemporaryMark))
                commands.add(QStringLiteral("*DELE ") + prefix + name);
        }
    }
    curl_easy_setopt(d->curl, CURLOPT_QUOTE, commands.get());
    const Outcome outcome = d->perform(false);
    char* entry = nullptr;
    if (outcome.ok() && !d->destination.isSftp() &&
        curl_easy_getinfo(d->curl, CURLINFO_FTP_ENTRY_PATH, &entry) == CURLE_OK && entry)
        d->ftpEntry = QString::fromUtf8(entry);
    return outcome;
}

ServerConnection::Outcome ServerConnection::send(const QString& localPath, const QString& relative,
                                                 PublishRecord::File* sent,
                                                 const std::function<void(qint64)>& progress) {
    QFile file(localPath);
    if (!file.open(QIODevice::ReadOnly)) return {Failure::File, file.errorString()};
    const QString name = nameOf(relative);
    const QString temporary = folderOf(relative) + temporaryName(name);
    d->configure(d->destination.url(temporary));
    Reading reading;
    reading.file = &file;
    curl_easy_setopt(d->curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(d->curl, CURLOPT_READFUNCTION, &readFunction);
    curl_easy_setopt(d->curl, CURLOPT_READDATA, &reading);
    curl_easy_setopt(d->curl, CURLOPT_INFILESIZE_LARGE, curl_off_t(file.size()));
    curl_easy_setopt(d->curl, CURLOPT_FTP_CREATE_MISSING_DIRS, long(CURLFTP_CREATE_DIR_RETRY));
    curl_easy_setopt(d->curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(d->curl, CURLOPT_XFERINFOFUNCTION, &progressFunction);
    curl_easy_setopt(d->curl, CURLOPT_XFERINFODATA,
                     const_cast<std::function<void(qint64)>*>(&progress));
    CommandList rename;
    if (d->destination.isSftp()) {
        const QString target = d->destination.serverPath(relative);
        const QString aside = d->destination.serverPath(folderOf(relative) + replacedName(name));
        rename.add(QStringLiteral("*rename %1 %2").arg(quoted(target), quoted(aside)));
        rename.add(QStringLiteral("rename %1 %2")
                       .arg(quoted(d->destination.serverPath(temporary)), quoted(target)));
        rename.add(QStringLiteral("*rm ") + quoted(aside));
    } else {
        // After the upload the FTP session is in the file's folder.
        rename.add(QStringLiteral("RNFR ") + temporaryName(name));
        rename.add(QStringLiteral("RNTO ") + name);
    }
    curl_easy_setopt(d->curl, CURLOPT_POSTQUOTE, rename.get());
    Outcome outcome = d->perform(true);
    if (!reading.error.isEmpty()) outcome = {Failure::File, reading.error};
    if (outcome.ok()) *sent = {reading.sent, QString::fromLatin1(reading.hash.result().toHex())};
    return outcome;
}

ServerConnection::Outcome ServerConnection::remove(const QString& relative) {
    d->configure(d->destination.url(QString()));
    curl_easy_setopt(d->curl, CURLOPT_NOBODY, 1L);
    CommandList commands;
    QString path = d->destination.serverPath(relative);
    if (d->destination.isSftp())
        commands.add(QStringLiteral("rm ") + quoted(path));
    else
        commands.add(QStringLiteral("DELE ") +
                     (d->ftpEntry.isEmpty()
                          ? path
                          : d->ftpEntry + (d->ftpEntry.endsWith(u'/') ? "" : "/") + path));
    curl_easy_setopt(d->curl, CURLOPT_QUOTE, commands.get());
    Outcome outcome = d->perform(true);
    if (outcome.failure == Failure::File && d->destination.isSftp() &&
        outcome.message.contains(QStringLiteral("No such file")))
        return {};
    return outcome;
}
