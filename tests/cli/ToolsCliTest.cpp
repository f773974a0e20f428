#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "generators/OutputKinds.h"
#include "imaging/ImagingFixtures.h"
#include "presets/ControlRegistry.h"

using testsupport::orvella;

namespace {

// A version file served over HTTP from 127.0.0.1 by a thread of the test, to any number of
// requests, while the program under test runs.
class VersionServer {
  public:
    explicit VersionServer(const std::string& body) {
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        ::bind(listener_, reinterpret_cast<sockaddr*>(&address), length);
        ::listen(listener_, 8);
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this, body] {
            while (true) {
                const int client = ::accept(listener_, nullptr, nullptr);
                if (client < 0 || stopping_) {
                    if (client >= 0) ::close(client);
                    return;
                }
                std::string request;
                char buffer[1024];
                while (request.find("\r\n\r\n") == std::string::npos) {
                    const ssize_t n = ::read(client, buffer, sizeof(buffer));
                    if (n <= 0) break;
                    request.append(buffer, size_t(n));
                }
                const std::string reply =
                    "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) +
                    "\r\nConnection: close\r\n\r\n" + body;
                (void)!::write(client, reply.data(), reply.size());
                ::close(client);
            }
        });
    }
    ~VersionServer() {
        stopping_ = true;
        // Wakes the accept up with a connection of our own.
        const int poke = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port_);
        ::connect(poke, reinterpret_cast<sockaddr*>(&address), sizeof(address));
        thread_.join();
        ::close(poke);
        ::close(listener_);
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/version.txt").arg(port_); }

  private:
    int listener_ = -1;
    quint16 port_ = 0;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace

TEST(WatermarkCli, OneStatusLinePerFileExitCodesAndTheRefusedFolder) {
    const QString dir = testsupport::freshDir("cli-watermark");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "a.png");
    fixtures::save(fixtures::solid(200, 100, {128, 128, 128}), dir + "b.jpg");
    fixtures::save(fixtures::solid(20, 10, {255, 0, 0}), dir + "mark.png");
    fixtures::writeBytes(dir + "notes.jpg", "plain words");
    const QByteArray original = fixtures::bytesOf(dir + "a.png");
    QString out, err;

    EXPECT_EQ(orvella({"watermark", "text", "--out", dir + "out", "--set", "tfFontSize=30", "--set",
                       "tvWaterMarkText=Orvella", dir + "a.png", dir + "b.jpg", dir + "notes.jpg"},
                      &out, &err),
              1)
        << err.toStdString();
    EXPECT_EQ(out, dir + "a.png: OK\n" + dir + "b.jpg: OK\n" + dir + "notes.jpg: NOK\n");
    EXPECT_EQ(fixtures::loader(dir + "out/b.jpg"), "jpegload");
    EXPECT_EQ(fixtures::load(dir + "out/a.png").max(), 192);  // white text at half opacity

    EXPECT_EQ(
        orvella({"watermark", "image", "--out", dir + "marked", "--set",
                 "tfWaterMarkImageFilePath=" + dir + "mark.png", "--set", "scImageWaterMarkPos=0",
                 "--set", "tfImageTransparancy=0", "--set", "tfFontSize=40", dir + "a.png"},
                &out, &err),
        0)
        << err.toStdString();
    EXPECT_EQ(out, dir + "a.png: OK\n");
    EXPECT_EQ(fixtures::pixel(dir + "marked/a.png", 20, 10), (fixtures::Pixel{255, 0, 0}));
    EXPECT_EQ(fixtures::pixel(dir + "marked/a.png", 60, 40), (fixtures::Pixel{128, 128, 128}));

    // Refusals and wrong usage: 2, nothing written.
    for (const QStringList& refused :
         {QStringList{"watermark", "text", "--out", dir, dir + "a.png"},
          QStringList{"watermark", "text", "--out", dir + "../cli-watermark", dir + "a.png"},
          QStringList{"watermark", "text", "--out", dir + "x", "--set", "tfPageTitle=x",
                      dir + "a.png"},
          QStringList{"watermark", "text", "--out", dir + "x", "--set", "tfFontSize=big",
                      dir + "a.png"},
          QStringList{"watermark", "image", "--out", dir + "x", dir + "a.png"},
          QStringList{"watermark", "stamp", "--out", dir + "x", dir + "a.png"},
          QStringList{"watermark", "text", dir + "a.png"}}) {
        EXPECT_EQ(orvella(refused, &out, &err), 2) << refused.join(' ').toStdString();
        EXPECT_FALSE(err.isEmpty());
    }
    EXPECT_EQ(fixtures::bytesOf(dir + "a.png"), original);
    EXPECT_FALSE(QFileInfo::exists(dir + "x/a.png"));
}

TEST(WatermarkCli, SettingsListsEveryWatermarkControl) {
    QString out;
    ASSERT_EQ(orvella({"settings", "watermark"}, &out), 0);
    const QStringList lines = out.split('\n', Qt::SkipEmptyParts);
    const auto controls = OutputKinds::registry().controls("watermark");
    ASSERT_EQ(lines.size(), controls.size() + 1);
    for (qsizetype i = 0; i < controls.size(); ++i)
        EXPECT_EQ(lines[i + 1].section('\t', 0, 0), controls[i]->name);
    EXPECT_TRUE(out.contains("\ntfFontSize\t\tnumber\t24\t\tText: Size (points; image width)\n"));
    EXPECT_TRUE(out.contains("\nscWaterMarkPos\t\tsegmented\t8\ttop left | top | "));
    EXPECT_TRUE(out.contains("DejaVu Sans"));
}

TEST(MetaToolsCli, BatchPrintsOneLogLinePerSuccess) {
    const QString dir = testsupport::freshDir("cli-meta-batch");
    QDir().mkpath(dir + "folder");
    for (const QString name : {"folder/a.jpg", "folder/b.JPG", "folder/ro.jpg", "c.tif"})
        fixtures::save(fixtures::solid(30, 20, {90, 90, 90}), dir + name);
    fixtures::writeBytes(dir + "folder/notes.txt", "x");
    ASSERT_TRUE(QFile::setPermissions(dir + "folder/ro.jpg", QFile::ReadOwner | QFile::ReadGroup));
    QString out, err;
    EXPECT_EQ(orvella({"meta", "batch", "--comment", "Sea fog", dir + "folder", dir + "c.tif"},
                      &out, &err),
              1);
    const QStringList lines = out.split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3) << out.toStdString();
    const QStringList names = {"a.jpg", "b.JPG", "c.tif"};
    const QStringList paths = {dir + "folder/a.jpg", dir + "folder/b.JPG", dir + "c.tif"};
    for (int i = 0; i < 3; ++i) {
        const QStringList fields = lines[i].split('\t');
        ASSERT_EQ(fields.size(), 8);
        EXPECT_TRUE(QDateTime::fromString(fields[0], "yyyy-MM-dd HH:mm:ss").isValid());
        EXPECT_EQ(fields.mid(1), (QStringList{"File Editing", "Edit meta data", "OK", names[i],
                                              names[i], paths[i], paths[i]}));
        EXPECT_EQ(testsupport::exiftool(paths[i], "UserComment"), "Sea fog");
    }
    EXPECT_TRUE(err.contains(dir + "folder/ro.jpg: the file is read-only")) << err.toStdString();
    EXPECT_EQ(testsupport::exiftool(dir + "folder/ro.jpg", "UserComment"), QString());

    EXPECT_EQ(orvella({"meta", "batch", "--comment", "", dir + "c.tif"}, &out), 0);
    EXPECT_EQ(orvella({"meta", "batch", dir + "c.tif"}, &out, &err), 2);
    EXPECT_EQ(orvella({"meta", "batch", "--comment", "x"}, &out, &err), 2);
}

TEST(MetaToolsCli, CompletePrintsKeldra) {
    const QString dir = testsupport::freshDir("cli-meta-complete");
    fixtures::save(fixtures::solid(30, 20, {90, 90, 90}), dir + "in.jpg");
    fixtures::writeBytes(dir + "notes.jpg", "plain words");
    QString out, err;
    EXPECT_EQ(orvella({"meta", "complete", dir + "in.jpg", dir + "out.jpg"}, &out), 0);
    EXPECT_EQ(out, "Keldra\n");
    EXPECT_EQ(testsupport::exiftool(dir + "out.jpg", "UserComment"), "Keldra");
    EXPECT_EQ(orvella({"meta", "complete", dir + "in.jpg", dir + "in.jpg"}, &out, &err), 2);
    EXPECT_EQ(orvella({"meta", "complete", dir + "notes.jpg", dir + "n.jpg"}, &out, &err), 1);
    EXPECT_FALSE(QFileInfo::exists(dir + "n.jpg"));
    EXPECT_EQ(testsupport::exiftool(dir + "in.jpg", "UserComment"), QString());
}

TEST(UpdateCheckCli, PrintsTheAnnouncementOfANewerBuildOnly) {
    VersionServer server("2.1;215;New: faster export\n");
    VersionServer malformed("2.1;215");
    QString out, err;
    EXPECT_EQ(orvella({"update-check", "--url", server.url(), "--build", "214"}, &out), 0);
    EXPECT_EQ(out, "New: faster export\n");
    EXPECT_EQ(orvella({"update-check", "--url", server.url(), "--build", "215"}, &out), 0);
    EXPECT_EQ(out, QString());
    EXPECT_EQ(orvella({"update-check", "--verbose", "--url", malformed.url(), "--build", "1"}, &out,
                      &err),
              0);
    EXPECT_EQ(out, QString());
    EXPECT_TRUE(err.contains("Orv throws an exception: ")) << err.toStdString();
    EXPECT_EQ(orvella({"update-check", "--url", "http://127.0.0.1:9/version.txt"}, &out), 0);
    EXPECT_EQ(out, QString());
    EXPECT_EQ(orvella({"update-check", "--build", "new"}, &out, &err), 2);
}
