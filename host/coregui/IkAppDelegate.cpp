#include "zuCoreGui/IkAppDelegate.h"

namespace {
IkAppDelegate* s_delegate = nullptr;
} // namespace

IkAppDelegate::~IkAppDelegate() {
    if (s_delegate == this) {
        s_delegate = nullptr;
    }
}

IkAppDelegate* IkAppDelegate::instance() {
    return s_delegate;
}

void IkAppDelegate::setInstance(IkAppDelegate* pDelegate) {
    s_delegate = pDelegate;
}
