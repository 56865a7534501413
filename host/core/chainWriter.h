#pragma once

class CkChain;
class QDomDocument;
class QDomElement;

/// Attribute "version" of the XML element of a chain. Readers refuse higher ones.
inline constexpr int kChainFormatVersion = 1;

/// Writes a chain into an XML element, see CkChain::save. Control lock. False when a block cannot save its
/// settings.
bool writeChain(const CkChain& chain, QDomDocument& doc, QDomElement& element);
