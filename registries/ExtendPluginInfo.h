#pragma once

#include <ovapp_export.h>

#include <QString>

namespace App {

/// The description of an extension plug-in. Derive from it and register an object with
/// `ExtendPluginRegistry`.
///
///     class EngravingInfo : public App::ExtendPluginInfo
///     {
///     public:
///         QString name() const override { return QStringLiteral("engraving"); }
///         QString description() const override
///         {
///             return QCoreApplication::translate("EngravingInfo", "Engraves in relief");
///         }
///         int supportedBoardTypes() const override { return 1; }
///     };
///
/// The library itself calls none of these functions. The executable and other plug-ins call them,
/// on the main thread. A copy of a description is not registered.
class OVAPP_EXPORT ExtendPluginInfo
{
public:
    virtual ~ExtendPluginInfo();

    /// Returns the name that identifies the extension in code; empty by default.
    virtual QString name() const;
    /// Returns the untranslated display name, the source text of a translation; empty by default.
    virtual QString nameForTranslate() const;
    /// Returns one sentence that describes the extension to users.
    virtual QString description() const = 0;
    /// Returns the board types that the extension supports, as a bit mask.
    virtual int supportedBoardTypes() const = 0;
};

} // namespace App
