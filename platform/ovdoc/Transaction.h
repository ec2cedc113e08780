#pragma once

#include <ovdoc_export.h>

#include <QString>

namespace Doc {

/// A change of a document, which has a name. Copies are cheap: the name is implicitly shared.
class OVDOC_EXPORT Transaction
{
public:
    /// Creates a transaction with this name, or a copy.
    /// @{
    explicit Transaction(const QString& name = QString());
    Transaction(const Transaction& other);
    Transaction& operator=(const Transaction& other);
    /// @}
    ~Transaction();

    /// The name that the list of changes shows to the user; may be empty.
    /// @{
    QString name() const;
    void setName(const QString& name);
    /// @}

private:
    QString _name;
};

} // namespace Doc
