// SPDX-License-Identifier: Apache-2.0
// Texts of the toolkit that our windows show: labels of its buttons. Its own catalogues are a package that need not be
// installed, so ours have them, too. For scripts/translations.sh; nothing includes this.
#pragma once
_("&Cancel")
_("&Close")
_("&Copy")
_("&Help")
_("&No")
_("&OK")
_("&Open")
_("&Save")
_("&Yes")
_("Cancel")
_("Close")
_("No")
_("OK")
_("Yes")
