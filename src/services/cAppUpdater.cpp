#include "services/cAppUpdater.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSettings>
#include <QStringList>
#include <QTimer>
#include <utility>

#include "services/Log.h"
#include "services/TextValues.h"

namespace {

// A text from the server as it may be shown: no control characters (a terminal would obey them),
// line feeds and tabs kept where asked.
QString withoutControls(const QString& text, bool multiLine) {
    QString kept;
    for (const QChar c : text)
        if (c.category() != QChar::Other_Control || (multiLine && (c == u'\n' || c == u'\t')))
            kept.append(c);
    return kept;
}

}  // namespace

cAppUpdater::cAppUpdater(QObject* parent) : QObject(parent), url(versionFileUrl()) {}

QString cAppUpdater::defaultVersionFileUrl() {
    return QStringLiteral("https://www.keldra.com/orvella/version.txt");
}

QString cAppUpdater::versionFileUrl() {
    return QSettings().value(QStringLiteral("UpdateCheckURL"), defaultVersionFileUrl()).toString();
}

int cAppUpdater::currentBuild() {
    const QStringList parts = QStringLiteral(ORVELLA_VERSION).split(u'.');
    return TextValues::intValue(parts.value(0)) * 10000 +
           TextValues::intValue(parts.value(1)) * 100 + TextValues::intValue(parts.value(2));
}

cAppUpdater::Offer cAppUpdater::hReadVersionFile(const QString& text, int currentBuild) {
    const QStringList fields = text.split(u';');
    auto field = [&](qsizetype i) {
        if (i >= fields.size())
            throw QStringLiteral("index %1 beyond bounds [0 .. %2]").arg(i).arg(fields.size() - 1);
        return fields[i];
    };
    try {
        if (TextValues::intValue(field(1)) <= currentBuild) return {};
        const QString announcement = withoutControls(field(2), true).trimmed();
        return {announcement, withoutControls(field(0), false) + u' ' + announcement};
    } catch (const QString& exception) {
        klLog() << QStringLiteral("Orv throws an exception: %1").arg(exception);
        return {};
    }
}

QString cAppUpdater::getAppVersion(int currentBuild) {
    if (reply_) return combined_;
    if (!network_) network_ = new QNetworkAccessManager(this);
    failure = Failure::None;
    err.clear();
    body_.clear();
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setRawHeader("Cache-Control", "no-cache");
    reply_ = network_->get(request);
    // Read as it arrives, so that the network layer holds little more than this.
    reply_->setReadBufferSize(64 * 1024);
    connect(reply_, &QNetworkReply::metaDataChanged, this, [this] {
        const QVariant length = reply_->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > kMaxReplyBytes) stop(Failure::TooLarge);
    });
    connect(reply_, &QNetworkReply::readyRead, this, &cAppUpdater::take);
    connect(reply_, &QNetworkReply::finished, this,
            [this, currentBuild] { replied(currentBuild); });
    QTimer::singleShot(timeoutMs, reply_, [this] { stop(Failure::TimedOut); });
    return combined_;
}

void cAppUpdater::take() {
    if (!reply_ || failure != Failure::None) return;
    body_ += reply_->read(kMaxReplyBytes + 1 - body_.size());
    if (body_.size() > kMaxReplyBytes) stop(Failure::TooLarge);
}

void cAppUpdater::stop(Failure why) {
    if (!reply_ || failure != Failure::None) return;
    failure = why;
    reply_->abort();  // finishes the reply at once
}

void cAppUpdater::replied(int currentBuild) {
    QNetworkReply* reply = reply_;
    reply_ = nullptr;
    reply->deleteLater();
    if (failure == Failure::None && reply->error() != QNetworkReply::NoError) {
        failure = Failure::Unreachable;
        err = reply->errorString();
    } else if (failure == Failure::None) {
        body_ += reply->read(kMaxReplyBytes + 1 - body_.size());
        if (body_.size() > kMaxReplyBytes) failure = Failure::TooLarge;
    }
    const QByteArray data = std::exchange(body_, {});
    if (failure == Failure::TooLarge)
        err = QStringLiteral("the reply is too large (the limit is %1 MB)")
                  .arg(kMaxReplyBytes / (1024 * 1024));
    if (failure == Failure::TimedOut) {
        const double seconds = timeoutMs / 1000.0;
        err = QStringLiteral("no complete reply within %1 %2")
                  .arg(seconds)
                  .arg(seconds == 1 ? QStringLiteral("second") : QStringLiteral("seconds"));
    }
    if (failure != Failure::None) {
        klLog() << "update check:" << url.toDisplayString() << err;
        Q_EMIT finished();
        return;
    }
    if (!data.isEmpty()) {
        html = QString::fromUtf8(data);
        const Offer offer = hReadVersionFile(html, currentBuild);
        if (!offer.combined.isEmpty()) {
            combined_ = offer.combined;
            Q_EMIT newVersion(offer.announcement, offer.combined);
        }
    }
    Q_EMIT finished();
}
