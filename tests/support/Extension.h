#pragma once

#include <support/Literals.h>

#include <registries/ExtendPluginInfo.h>

/// An extension for the board types 1 and 4.
struct Extension : App::ExtendPluginInfo
{
    QString description() const override { return "engraves"_s; }
    int supportedBoardTypes() const override { return 5; }
};
