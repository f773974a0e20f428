#pragma once

#include <QProcess>
#include <QString>

namespace testsupport {

// A server program on 127.0.0.1 and a free port for one test, killed at the end of the test.
class LocalServer {
  public:
    explicit LocalServer(const QString& dir);  // a fresh folder of the test, ending with "/"
    ~LocalServer();

    // "" when the server runs, else why not.
    QString error() const { return error_; }
    int port() const { return port_; }

  protected:
    // Starts the program and waits until it accepts connections; error_ says why not.
    void start(const QString& program, const QStringList& arguments);

    QString dir_, error_;
    int port_ = 0;
    QProcess process_;
};

// OpenSSH's sshd on 127.0.0.1 and a free port for one test, run as the user running the tests,
// with a throwaway host key. home() is a HOME whose ~/.ssh holds the user's key (which the server
// accepts) and a known_hosts that knows the server.
class SshServer : public LocalServer {
  public:
    explicit SshServer(const QString& dir);

    QString home() const { return dir_ + "home"; }
    QString user() const;
    // The host key as `ssh-keygen -l` shows it: "SHA256:...".
    QString fingerprint() const { return fingerprint_; }
    // known_hosts' line for the server, as ssh writes it.
    QString knownHostsLine() const;
    // sftp://USER@127.0.0.1:PORT followed by `path` (an absolute path, taken as it is).
    QString destination(const QString& path) const;

  private:
    QString fingerprint_;
};

// vsftpd on 127.0.0.1 and a free port for one test, letting anonymous logins write into
// root() + "pub/". Needs root (vsftpd logs anonymous users in as the "ftp" user).
class FtpServer : public LocalServer {
  public:
    explicit FtpServer(const QString& dir);

    QString root() const { return dir_ + "ftp/"; }
    // ftp://127.0.0.1:PORT/ followed by `path` (relative to root()).
    QString destination(const QString& path) const;
};

}  // namespace testsupport
