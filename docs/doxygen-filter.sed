# What doxygen is shown of a header (docs/Doxyfile): without what explains itself, and what it would take for
# an undocumented part of the interface.
/^ *(void|bool) [a-z][A-Za-z]*Event\(Q[A-Za-z]*\* pEvent\) override;/d
/^ *QSize (sizeHint|minimumSizeHint)\(\) const override;/d
/(operator=?=|\(const [A-Za-z]+&\)).*= default;/d
s|// NOLINT\(google-explicit-constructor\)|///< Holds this.|
s|^( *explicit [A-Za-z]+\(Q(Widget\|Object)\* pParent = nullptr\);)$|\1 ///< pParent owns it; null: the caller does.|
s|^( *explicit CkCameraParameters\(const SkCameraInfo.*;)$|\1 ///< Made by the camera's driver.|
