#pragma once

#include <ovdoc_export.h>

#include <QString>

namespace Doc {

/// One change of a document, by its name. Copies are cheap: they share the name until one of them
/// changes it.
class OVDOC_EXPORT Transaction
{
public:
    /// A change of that name, or with that of another.
    /// @{
    explicit Transaction(const QString& name = QString());
    Transaction(const Transaction& other);
    Transaction& operator=(const Transaction& other);
    /// @}
    ~Transaction();

    /// What the user sees in the list of changes; empty when the change has no name.
    /// @{
    QString name() const;
    void setName(const QString& name);
    /// @}

private:
    QString _name;
};

} // namespace Doc
