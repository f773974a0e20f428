#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <memory>

#include "services/cAppUpdater.h"

namespace {

// The network needs an application object and an event loop.
struct CoreApplicationEnvironment : ::testing::Environment {
    int argc = 1;
    char* argv[2] = {const_cast<char*>("test"), nullptr};
    std::unique_ptr<QCoreApplication> app;
    void SetUp() override {
        if (!QCoreApplication::instance()) app = std::make_unique<QCoreApplication>(argc, argv);
    }
    void TearDown() override { app.reset(); }
};
const auto* const environment = ::testing::AddGlobalTestEnvironment(new CoreApplicationEnvironment);

// Serves one version file over HTTP on 127.0.0.1 and keeps the requests it was sent.
class VersionServer {
  public:
    explicit VersionServer(QByteArray body, int status = 200) {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, [this, body, status] {
            QTcpSocket* socket = server_.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, [this, socket, body, status] {
                request += socket->readAll();
                if (!request.contains("\r\n\r\n")) return;
                socket->write("HTTP/1.1 " + QByteArray::number(status) +
                              (status == 200 ? " OK" : " Not Found") +
                              "\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
                              body);
                socket->disconnectFromHost();
            });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
    }
    QUrl url() const {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/version.txt").arg(server_.serverPort()));
    }
    QByteArray request;

  private:
    QTcpServer server_;
};

QStringList logged;
void keepMessage(QtMsgType, const QMessageLogContext&, const QString& message) {
    logged.append(message);
}

struct Outcome {
    bool finished = false;
    QStringList announcements;
    QString returned;
};

// Runs one check against `url` for the build, waiting for it to end (a guard stops a hung one).
Outcome check(const QUrl& url, int build) {
    Outcome outcome;
    cAppUpdater updater;
    updater.url = url;
    QEventLoop loop;
    QObject::connect(&updater, &cAppUpdater::finished, [&] {
        outcome.finished = true;
        loop.quit();
    });
    QObject::connect(&updater, &cAppUpdater::newVersion,
                     [&](const QString& announcement, const QString& combined) {
                         outcome.announcements << announcement << combined;
                     });
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    logged.clear();
    const QtMessageHandler previous = qInstallMessageHandler(keepMessage);
    outcome.returned = updater.getAppVersion(build);  // returns before anything arrived
    EXPECT_TRUE(updater.isRunning());
    loop.exec();
    qInstallMessageHandler(previous);
    return outcome;
}

bool loggedException() {
    return logged.filter(QStringLiteral("Orv throws an exception: ")).size() == 1;
}

}  // namespace

TEST(UpdateCheck, AnnouncesOnlyANewerBuild) {
    struct Case {
        QByteArray body;
        int build;
        QStringList announcements;
        bool exception;
    };
    for (const Case& c : std::vector<Case>{
             {"2.1;215;New: faster export",
              214,
              {"New: faster export", "2.1 New: faster export"},
              false},
             {"2.1;215;New: faster export\n",
              214,
              {"New: faster export", "2.1 New: faster export"},
              false},
             {"2.1;215;New: faster export", 215, {}, false},
             {"2.1;215;New: faster export", 300, {}, false},
             {"3.0;1000;Zürich – 東京;extra;fields",
              999,
              {"Zürich – 東京", "3.0 Zürich – 東京"},
              false},
             {"2.1;215", 214, {}, true},
             {"2.1", 214, {}, true},
             {"2.1;215", 215, {}, false},  // field 2 is never reached
             {"", 214, {}, false},
         }) {
        SCOPED_TRACE(c.body.toStdString() + " / " + std::to_string(c.build));
        VersionServer server(c.body);
        const Outcome outcome = check(server.url(), c.build);
        EXPECT_TRUE(outcome.finished);
        EXPECT_EQ(outcome.returned, QString());
        EXPECT_EQ(outcome.announcements, c.announcements);
        EXPECT_EQ(loggedException(), c.exception) << logged.join('\n').toStdString();
        // The request goes to the server whatever is cached.
        EXPECT_TRUE(server.request.startsWith("GET /version.txt HTTP/1.1\r\n"));
        EXPECT_TRUE(server.request.toLower().contains("cache-control: no-cache"));
    }
}

TEST(UpdateCheck, NoAnswerEndsSilently) {
    {
        VersionServer missing("2.1;999;Never shown", 404);
        const Outcome outcome = check(missing.url(), 1);
        EXPECT_TRUE(outcome.finished);
        EXPECT_TRUE(outcome.announcements.isEmpty());
        EXPECT_FALSE(loggedException());
    }
    // A port nobody listens on: refused at once, no announcement, nothing logged as malformed.
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const quint16 port = closed.serverPort();
    closed.close();
    const Outcome outcome =
        check(QUrl(QStringLiteral("http://127.0.0.1:%1/version.txt").arg(port)), 1);
    EXPECT_TRUE(outcome.finished);
    EXPECT_TRUE(outcome.announcements.isEmpty());
    EXPECT_FALSE(loggedException());
}

TEST(UpdateCheck, BuildNumberAndAddress) {
    const QStringList version = QStringLiteral(ORVELLA_VERSION).split('.');
    ASSERT_EQ(version.size(), 3);
    EXPECT_EQ(cAppUpdater::currentBuild(),
              version[0].toInt() * 10000 + version[1].toInt() * 100 + version[2].toInt());
    EXPECT_TRUE(cAppUpdater::defaultVersionFileUrl().startsWith("https://"));
    EXPECT_EQ(cAppUpdater().url, QUrl(cAppUpdater::versionFileUrl()));
}
