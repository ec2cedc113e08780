#pragma once

#include <QStringList>
#include <QVariantMap>

#include <functional>

/// A substitute for the registries and the layer below. It records every call with its relevant
/// arguments, and returns the values of the fields.
struct RecordingLayer
{
    QStringList calls;
    /// Called before each call is recorded.
    std::function<void(const QString&)> onCall;

    QVariantMap settings;
    const char* version = nullptr;
    bool documentOpens = true;

    static RecordingLayer& instance();
    static void record(const QString& call);
};
