#pragma once

#include "plugins/zplToF/view3d/CkToFColorTable.h"

#include <QList>
#include <memory>

class CkLut;
class CkMdiView;

/// The look-up table that a 3D view is coloured with, and the colours that it gives. User-interface thread.
class CkToFViewLut {
public:
    /// The flags that come with a table; their meaning is the host's.
    struct SkFlags {
        bool bFlag1 = true;
        bool bFlag2 = false;
    };

    CkToFViewLut();
    ~CkToFViewLut();

    CkLut* lut() const { return m_lut.get(); } ///< Null before the first table.
    const SkFlags& flags() const { return m_flags; }
    /// The table, its flags and the bits of the values it is applied to, as CkMdiView::viewLut returns them.
    CkLut* read(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) const;
    /// 256 entries of 4 bytes, see CkToFColorTable; null without a table or when memory ran out.
    const quint8* colors() const { return m_lut ? m_colorTable.colors() : nullptr; }

    /// Whether the table has the bit depth of this picture.
    bool fits(const SkPicBuf& picture) const;
    /// A table for a picture that the present one does not fit: the host's choice for the cameras, unless a
    /// table was chosen for this view; else the present one in the picture's format. Owned by the caller.
    /// Null when there is neither, or when it is the present one.
    CkLut* makeFor(const SkPicBuf& picture, const QList<void*>& cameraHandles);

    /// Takes ownership of the table and stores its map in the settings. False, and only the flags are taken,
    /// for null. May be the present table, changed in place.
    bool set(CkLut* pLut, const SkFlags& flags);
    /// Tells the application that the view has another table.
    static void announceChange(CkMdiView& view);
    /// Without a table: makes one from the map in the settings.
    void makeDefault(const SkPicBuf& picture);

private:
    std::unique_ptr<CkLut> m_lut;
    bool m_isDefault = false; ///< made without a picture or a stored choice; the host's choice replaces it
    SkFlags m_flags;
    CkToFColorTable m_colorTable;
};
