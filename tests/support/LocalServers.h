#pragma once

#include <QProcess>
#include <QString>

namespace testsupport {

// OpenSSH's sshd on 127.0.0.1 and a free port for one test, run as the user running the tests,
// with a throwaway host key. home() is a HOME whose ~/.ssh holds the user's key (which the server
// accepts) and a known_hosts that knows the server.
class SshServer {
  public:
    explicit SshServer(const QString& dir);  // a fresh folder of the test, ending with "/"
    ~SshServer();

    // "" when the server runs, else why not.
    QString error() const { return error_; }
    int port() const { return port_; }
    QString home() const { return dir_ + QStringLiteral("home"); }
    QString user() const;
    // The host key as `ssh-keygen -l` shows it: "SHA256:...".
    QString fingerprint() const { return fingerprint_; }
    // known_hosts' line for the server, as ssh writes it.
    QString knownHostsLine() const;
    // sftp://USER@127.0.0.1:PORT followed by `path` (an absolute path, taken as it is).
    QString destination(const QString& path) const;

  private:
    QString dir_;
    QString error_;
    QString fingerprint_;
    int port_ = 0;
    QProcess process_;
};

// vsftpd on 127.0.0.1 and a free port for one test, letting anonymous logins write into
// root() + "pub/". Needs root (vsftpd logs anonymous users in as the "ftp" user).
class FtpServer {
  public:
    explicit FtpServer(const QString& dir);
    ~FtpServer();

    QString error() const { return error_; }
    QString root() const { return dir_ + QStringLiteral("ftp/"); }
    // ftp://127.0.0.1:PORT/ followed by `path` (relative to root()).
    QString destination(const QString& path) const;

  private:
    QString dir_;
    QString error_;
    int port_ = 0;
    QProcess process_;
};

}  // namespace testsupport
