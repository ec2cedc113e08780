#pragma once

#include <QStringList>
#include <QVariantMap>

#include <functional>

/// A second implementation of the registries and the layer below the library: it writes down every
/// call that reaches it, with the arguments that matter, and answers as the fields say.
struct RecordingLayer
{
    QStringList calls;
    /// Called with each call, before it is written down.
    std::function<void(const QString&)> onCall;

    QVariantMap settings;
    const char* version = nullptr;
    bool documentOpens = true;

    static RecordingLayer& instance();
    static void note(const QString& call);
};
