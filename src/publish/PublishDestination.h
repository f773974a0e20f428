#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

// Where a site is published: sftp://USER@HOST[:PORT]/PATH, ftp://[USER@]HOST[:PORT]/PATH or
// ftps://... (FTP with TLS required, AUTH TLS on the FTP port). The path may be typed with spaces
// and letters beyond ASCII or percent-encoded; either way it is kept decoded. An SFTP path starting
// with "/~/" lies in the user's home folder; an FTP path starts at the folder the login lands in.
// A destination never holds a password.
class PublishDestination {
  public:
    enum class Protocol { Sftp, Ftp, Ftps };

    // The destination of `text`, or nothing with the reason in `error`.
    static std::optional<PublishDestination> parse(const QString& text, QString* error);

    Protocol protocol() const { return protocol_; }
    QString user() const { return user_; }
    QString host() const { return host_; }
    int port() const { return port_; }
    bool isSftp() const { return protocol_ == Protocol::Sftp; }

    // The one spelling of the destination, percent-encoded: how the publish record knows it.
    QString key() const;
    // The destination as the user reads it: spaces as %20, other letters as they are.
    QString display() const;

    // libcurl's URL of the file at `relative` (a path inside the site, "/"-separated), or of the
    // server's root folder for an empty one.
    QByteArray url(const QString& relative) const;
    // The path on the server of the file at `relative`, as the server's commands take it: for
    // SFTP absolute, or relative to the home folder; for FTP relative to the login folder.
    QString serverPath(const QString& relative) const;

  private:
    QString text(bool forUser) const;
    QStringList segmentsOf(const QString& relative) const;

    Protocol protocol_ = Protocol::Sftp;
    QString user_;
    QString host_;
    int port_ = 22;
    bool inHome_ = false;  // SFTP: the path starts in the home folder ("/~/")
    QStringList folders_;  // the decoded folder names of the path
};
