#pragma once

#include <ovapp_export.h>

#include <QString>

namespace App {

/// The description of an extension plug-in. Derive from it, and register it with
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
/// The library calls none of these operations; the executable and other plug-ins do, on the main
/// thread.
class OVAPP_EXPORT ExtendPluginInfo
{
public:
    ExtendPluginInfo();
    /// A copy is not registered, whether its source is or not.
    /// @{
    ExtendPluginInfo(const ExtendPluginInfo& other);
    ExtendPluginInfo& operator=(const ExtendPluginInfo& other);
    /// @}
    virtual ~ExtendPluginInfo();

    /// The name by which programs know the extension; empty by default.
    virtual QString name() const;
    /// The name as the source text of a translation, for people; empty by default.
    virtual QString nameForTranslate() const;
    /// What the extension does, in a sentence for people.
    virtual QString description() const = 0;
    /// The board types, as a set of bits, for which the extension is of use.
    virtual int supportedBoardTypes() const = 0;
};

} // namespace App
