#include "support/LocalServers.h"

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTcpServer>
#include <QTcpSocket>

#include "support/TestSupport.h"

namespace testsupport {

LocalServer::LocalServer(const QString& dir) : dir_(dir) {
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    port_ = server.serverPort();
}

LocalServer::~LocalServer() {
    process_.kill();
    process_.waitForFinished();
}

void LocalServer::start(const QString& program, const QStringList& arguments) {
    process_.start(program, arguments);
    for (int attempt = 0; attempt < 200; ++attempt) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, quint16(port_));
        if (socket.waitForConnected(100)) return;
        if (process_.state() == QProcess::NotRunning || process_.waitForFinished(50)) break;
    }
    process_.kill();
    process_.waitForFinished();
    error_ = QFileInfo(program).fileName() + " did not start: " +
             QString::fromUtf8(process_.readAllStandardError() + process_.readAllStandardOutput());
}

SshServer::SshServer(const QString& dir) : LocalServer(dir) {
    if (!QFileInfo::exists("/usr/sbin/sshd")) {
        error_ = "no /usr/sbin/sshd: install openssh-server (make deps)";
        return;
    }
    QDir().mkpath(home() + "/.ssh");
    const QString hostKey = dir_ + "host_key";
    const QString userKey = home() + "/.ssh/id_ed25519";
    QString out, err;
    for (const QString& key : {hostKey, userKey}) {
        if (runProgram("ssh-keygen",
                       {"-q", "-t", "ed25519", "-N", "", "-C", "orvella-test", "-f", key}, &out,
                       &err) != 0) {
            error_ = "ssh-keygen: " + err;
            return;
        }
    }
    runProgram("ssh-keygen", {"-l", "-f", hostKey + ".pub"}, &out);
    fingerprint_ = out.split(u' ').value(1);
    QFile::copy(userKey + ".pub", dir_ + "authorized_keys");
    writeFile(home() + "/.ssh/known_hosts", knownHostsLine().toUtf8() + '\n');
    const QString config = dir_ + "sshd_config";
    writeFile(config,
              QString("ListenAddress 127.0.0.1\nHostKey %1\nAuthorizedKeysFile %2authorized_keys\n"
                      "PidFile none\nUsePAM no\nStrictModes no\nPasswordAuthentication yes\n"
                      "KbdInteractiveAuthentication no\nPermitRootLogin yes\n"
                      "Subsystem sftp internal-sftp\nLogLevel ERROR\n")
                  .arg(hostKey, dir_)
                  .toUtf8());
    // Started as root, sshd wants the folder its system service makes at start.
    if (::geteuid() == 0) QDir().mkpath("/run/sshd");
    start("/usr/sbin/sshd", {"-D", "-e", "-f", config, "-p", QString::number(port_)});
}

QString SshServer::user() const {
    const passwd* pw = ::getpwuid(::geteuid());
    return pw ? QString::fromLocal8Bit(pw->pw_name) : QString();
}

QString SshServer::knownHostsLine() const {
    const QStringList key = QString::fromUtf8(readFile(dir_ + "host_key.pub")).split(u' ');
    return QString("[127.0.0.1]:%1 %2 %3").arg(port_).arg(key.value(0), key.value(1));
}

QString SshServer::destination(const QString& path) const {
    return QString("sftp://%1@127.0.0.1:%2%3").arg(user()).arg(port_).arg(path);
}

FtpServer::FtpServer(const QString& dir) : LocalServer(dir) {
    if (!QFileInfo::exists("/usr/sbin/vsftpd")) {
        error_ = "no /usr/sbin/vsftpd: install vsftpd (make deps)";
        return;
    }
    if (::geteuid() != 0) {
        error_ = "vsftpd logs anonymous users in only when started as root";
        return;
    }
    // The root may not be writable by the "ftp" user; the folder below it is.
    QDir().mkpath(root() + "pub");
    QFile::setPermissions(root(), QFileDevice::Permissions(0x7755));
    QFile::setPermissions(root() + "pub", QFileDevice::Permissions(0x7777));
    const QString config = dir_ + "vsftpd.conf";
    writeFile(config,
              QString("listen=YES\nlisten_address=127.0.0.1\nlisten_port=%1\nbackground=NO\n"
                      "anonymous_enable=YES\nlocal_enable=NO\nwrite_enable=YES\nanon_root=%2\n"
                      "anon_upload_enable=YES\nanon_mkdir_write_enable=YES\n"
                      "anon_other_write_enable=YES\nanon_umask=022\nno_anon_password=YES\n"
                      "seccomp_sandbox=NO\nisolate=NO\nisolate_network=NO\nxferlog_enable=NO\n")
                  .arg(QString::number(port_), root())
                  .toUtf8());
    start("/usr/sbin/vsftpd", {config});
}

QString FtpServer::destination(const QString& path) const {
    return QString("ftp://127.0.0.1:%1/%2").arg(port_).arg(path);
}

}  // namespace testsupport
