import QtQuick
import Lorvane

// The entry of one page.
NavigationButton {
    required property QtObject store
    required property int page
    required property int selectedPage

    text: LorPages.all[page].title
    symbol: LorPages.all[page].icon
    selected: page === selectedPage
    count: page === LorPages.history && store.historyCount > 0 ? store.historyCount : ""
}
