#pragma once

namespace thntfs {

/// Makes the three files in CatalogueFolder a catalogue that every walk gets through in one pass, whatever
/// has been copied into them: no block belongs to two chains, no entry stands in two folders, and no name is
/// longer than NTFS allows. A link that would break this is cut, so a damaged catalogue loses a folder's
/// content at most; a sound one isn't written to. The files must not be open elsewhere. Throws ScanInfoFault
/// where a file can't be read or written.
void RepairCatalogue();

} // namespace thntfs
