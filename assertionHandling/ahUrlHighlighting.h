// Makes the URLs visible that a text control has detected.
#ifndef AH_URL_HIGHLIGHTING_H
#define AH_URL_HIGHLIGHTING_H

class wxTextCtrl;

// To be called once after the text of a control with wxTE_AUTO_URL has been written with styles of its own: those hide
// the control's own way to mark a URL on some platforms. There the URLs of the text become blue and underlined,
// everything else about them and the text, the insertion point and the default style stay as they are.
void ahHighlightUrls(wxTextCtrl* pTextCtrl);

#endif
