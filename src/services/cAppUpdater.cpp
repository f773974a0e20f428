#include "services/cAppUpdater.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSettings>
#include <QStringList>

#include "services/Log.h"
#include "services/TextValues.h"

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
        const QString announcement = field(2).trimmed();
        return {announcement, field(0) + u' ' + announcement};
    } catch (const QString& exception) {
        klLog() << QStringLiteral("Orv throws an exception: %1").arg(exception);
        return {};
    }
}

QString cAppUpdater::getAppVersion(int currentBuild) {
    if (reply_) return combined_;
    if (!network_) network_ = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setRawHeader("Cache-Control", "no-cache");
    request.setTransferTimeout(timeoutMs);
    reply_ = network_->get(request);
    connect(reply_, &QNetworkReply::finished, this,
            [this, currentBuild] { replied(currentBuild); });
    return combined_;
}

void cAppUpdater::replied(int currentBuild) {
    QNetworkReply* reply = reply_;
    reply_ = nullptr;
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        err = reply->errorString();
        klLog() << "update check:" << err;
        Q_EMIT finished();
        return;
    }
    const QByteArray data = reply->readAll();
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
