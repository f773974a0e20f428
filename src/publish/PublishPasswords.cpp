#include "publish/PublishPasswords.h"

#include <libsecret/secret.h>

#include "services/Log.h"

namespace PublishPasswords {

namespace {

const SecretSchema* schema() {
    static const SecretSchema kSchema = {"com.keldracom.Orvella.Publish",
                                         SECRET_SCHEMA_NONE,
                                         {{"destination", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                          {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                         0,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr};
    return &kSchema;
}

QString taken(GError* error) {
    const QString message = error ? QString::fromUtf8(error->message) : QString();
    if (error) g_error_free(error);
    return message;
}

}  // namespace

QString lookup(const QString& destinationKey) {
    GError* error = nullptr;
    gchar* password = secret_password_lookup_sync(schema(), nullptr, &error, "destination",
                                                  destinationKey.toUtf8().constData(), nullptr);
    if (error) klLog() << "publish: no remembered password:" << taken(error);
    if (!password) return {};
    const QString text = QString::fromUtf8(password);
    secret_password_free(password);
    return text;
}

bool store(const QString& destinationKey, const QString& password, QString* error) {
    GError* failure = nullptr;
    const QByteArray label = ("Orvella publish " + destinationKey).toUtf8();
    const bool ok = secret_password_store_sync(
        schema(), SECRET_COLLECTION_DEFAULT, label.constData(), password.toUtf8().constData(),
        nullptr, &failure, "destination", destinationKey.toUtf8().constData(), nullptr);
    const QString reason = taken(failure);
    if (!ok) *error = reason;
    return ok;
}

void forget(const QString& destinationKey) {
    GError* error = nullptr;
    secret_password_clear_sync(schema(), nullptr, &error, "destination",
                               destinationKey.toUtf8().constData(), nullptr);
    if (error) klLog() << "publish: password not forgotten:" << taken(error);
}

}  // namespace PublishPasswords
