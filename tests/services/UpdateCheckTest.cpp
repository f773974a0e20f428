#include <gtest/gtest.h>

#include "services/cAppUpdater.h"
#include "support/TestSupport.h"

namespace {

// A version server on 127.0.0.1, a program of its own: MODE "reply" sends BODY (padded with "x" to
// SIZE bytes when given), "missing" a 404, "trickle" a byte every two seconds without end,
// "endless" BODY and then data without end. It prints its port, then the requests it is sent.
const char* const kServer = R"(
import socket, sys, threading, time
mode, body = sys.argv[1], sys.argv[2].encode().ljust(int(sys.argv[3]), b"x")
server = socket.create_server(("127.0.0.1", 0))
print(server.getsockname()[1], flush=True)
def serve(c):
    try:
        request = b""
        while b"\r\n\r\n" not in request and (data := c.recv(4096)): request += data
        print(request.decode("latin-1"), flush=True)
        head = b"HTTP/1.1 " + (b"404 Not Found" if mode == "missing" else b"200 OK") + b"\r\n"
        if mode in ("reply", "missing"):
            c.sendall(head + b"Content-Length: %d\r\nConnection: close\r\n\r\n" % len(body) + body)
        else:
            c.sendall(head + b"\r\n" + body)
        while mode in ("trickle", "endless"):
            c.sendall(b"9" if mode == "trickle" else b"x" * 65536)
            time.sleep(2 if mode == "trickle" else 0)
    except OSError: pass
    c.close()
while True: threading.Thread(target=serve, args=(server.accept()[0],), daemon=True).start()
)";

struct VersionServer : QProcess {
    VersionServer(const QString& mode, const QByteArray& body, int size) {
        start("python3", {"-c", kServer, mode, QString::fromUtf8(body), QString::number(size)});
        while (!canReadLine() && waitForReadyRead(20000)) {
        }
        url = "http://127.0.0.1:" + readLine().trimmed() + "/version.txt";
    }
    ~VersionServer() override { stop(); }
    void stop() {
        kill();
        waitForFinished();
    }
    QString url;
};

}  // namespace

// The check against a real server, through the command line: the request bypasses caches; only
// a newer build is offered, its announcement alone printed, without control characters (line
// feeds and tabs kept); a reply too large (declared, or endless: never read past the limit, one
// of exactly the limit is read) is exit 1; no answer within the deadline (shortened here) or an
// error is a line on stderr ("*": any reason); --verbose logs a malformed file.
TEST(UpdateCheck, CommandLineAgainstARealServer) {
    const int limit = int(cAppUpdater::kMaxReplyBytes);
    const QString tooLarge =
        "orvella update-check: URL: the reply is too large (the limit is 1 MB)\n";
    const std::vector<std::tuple<QString, QByteArray, int, int, QString, QString>> cases = {
        // server, body, padded size, exit code, stdout, stderr (URL: the version file's)
        {"reply", "3.0;215;Ring\a the \x1b[2Jbell\tnow\r\nend\x7f\u009b;extra\n", 0, 0,
         "Ring the [2Jbell\tnow\nend\n", ""},
        {"reply", "2.1;2;Old news", 0, 0, "", ""},
        {"reply", "", 0, 0, "", ""},
        {"verbose", "2.1;215", 0, 0, "",
         "Orv throws an exception: index 2 beyond bounds [0 .. 1]\n"},
        {"reply", "2.1;215;Big;", limit, 0, "Big\n", ""},
        {"reply", "2.1;215;Big;", limit + 1, 1, "", tooLarge},
        {"endless", "2.1;215;Endless;", 0, 1, "", tooLarge},
        {"trickle", "", 0, 0, "", "orvella update-check: URL: no complete reply within 1 second\n"},
        {"missing", "2.1;999;Never shown", 0, 0, "", "*"},
        {"closed", "", 0, 0, "", "*"},
    };
    for (const auto& [mode, body, size, code, out, err] : cases) {
        SCOPED_TRACE(mode.toStdString() + " " + std::to_string(size));
        VersionServer server(mode == u"closed" || mode == u"verbose" ? "reply" : mode, body, size);
        if (mode == u"closed") server.stop();  // its port is refused from now on
        QStringList args{"update-check", "--url", server.url, "--build", "2", "--timeout"};
        args << (mode == u"trickle" ? "1" : "60");
        if (mode == u"verbose") args << "--verbose";
        QString printed, said;
        EXPECT_EQ(testsupport::orvella(args, &printed, &said), code);
        EXPECT_EQ(printed, out);
        EXPECT_TRUE(err == u"*" ? said.startsWith("orvella update-check: " + server.url + ": ")
                                : said == QString(err).replace("URL", server.url))
            << said;
        server.waitForReadyRead(5000);
        const QByteArray request = server.readAllStandardOutput().toLower();
        EXPECT_TRUE(mode == u"closed" || (request.startsWith("get /version.txt http/1.1\r\n") &&
                                          request.contains("cache-control: no-cache")))
            << request.toStdString();
    }
}
