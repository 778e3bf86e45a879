#pragma once
// The screens name their icons with the catalogue's symbol names ("trash.slash",
// "chart.pie.fill", each category's `symbol`). This table maps every such name to one
// vendored SVG of the Phosphor family in ui/icons; names ending in ".fill" use its
// filled variant, the others its bold outline.
//
// Convention for QML: a symbol name appears as a string literal in one of the forms
// `name: "…"` inside a `Symbol { }`, `symbol: "…"` or `systemImage: "…"`, so that the
// mapping test finds it. A name built at run time must come from the catalogue
// (category or System Data symbols), which the test checks as well.

#include <QString>
#include <QStringList>

namespace SymbolMap {

// Resource folder of the vendored icons.
inline constexpr char iconFolder[] = ":/Veltro/icons/";

// File name of the symbol's icon inside iconFolder; empty when the name is unknown.
QString fileName(const QString& symbol);

// ":/Veltro/icons/<file>", or empty when the name is unknown.
QString resourcePath(const QString& symbol);

// Every mapped name, sorted.
QStringList symbolNames();

} // namespace SymbolMap
