#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

// Asks the maker's web server for the latest release. The version file is UTF-8 text of fields
// separated by ";": the version name, the build number and the announcement shown to the user.
// When its build is greater than the running one, newVersion() is emitted with the announcement.
// No network, a time-out, an HTTP error or an empty answer end the check without an announcement
// (`failure` and `err` say why, for the log and the command line); a file with too few fields is
// logged. The check is bounded: one deadline for the whole of it however slowly the server
// answers, and at most kMaxReplyBytes read ("the reply is too large" beyond). Nothing of the reply
// leaves the object but the fields used, without control characters. The object works on the
// thread it lives in.
class cAppUpdater : public QObject {
    Q_OBJECT
  public:
    explicit cAppUpdater(QObject* parent = nullptr);

    // The address of the version file: the setting "UpdateCheckURL", or the maker's address.
    static QString versionFileUrl();
    static QString defaultVersionFileUrl();
    // The build number of this program: major * 10000 + minor * 100 + patch of its version.
    static int currentBuild();

    // Starts the check and returns at once. The result is the combined text (version name, a
    // space, the announcement) as far as a check has finished by then: nothing for a request that
    // is still under way.
    QString getAppVersion(int currentBuild);
    bool isRunning() const { return reply_ != nullptr; }

    // What a downloaded text offers for the running build; `combined` is empty when it offers
    // nothing newer. Logs "Orv throws an exception: ..." when a field it needs is missing.
    struct Offer {
        QString announcement;
        QString combined;
    };
    static Offer hReadVersionFile(const QString& text, int currentBuild);

    static constexpr qint64 kMaxReplyBytes = 1024 * 1024;
    enum class Failure { None, Unreachable, TimedOut, TooLarge };

    QUrl url;               // the version file; versionFileUrl() unless set
    int timeoutMs = 20000;  // the deadline of the whole check, from the request to the last byte
    QString html;           // the last downloaded text
    Failure failure = Failure::None;  // what ended the last check without an answer
    QString err;                      // the same in words

  Q_SIGNALS:
    void newVersion(const QString& announcement, const QString& combined);
    // The check ended, whatever its outcome.
    void finished();

  private:
    void replied(int currentBuild);
    // Reads what arrived, up to one byte over the limit.
    void take();
    // Ends the request under way for this reason.
    void stop(Failure why);

    QNetworkAccessManager* network_ = nullptr;
    QNetworkReply* reply_ = nullptr;
    QString combined_;
    QByteArray body_;
};
