// A list model kept in step with a list of plain rows by each row's `key` field:
// rows that are gone are removed, new ones inserted and the rest moved into place,
// so a view over it animates rows entering, leaving and reordering instead of
// rebuilding every delegate on each change.
import QtQuick

ListModel {
    id: root

    // The field of a row that identifies it.
    property string key

    function indexOfKey(value, from) {
        for (let i = from; i < count; ++i) {
            if (get(i)[key] === value)
                return i;
        }
        return -1;
    }

    // Makes the model hold `rows` (objects of scalar fields), in their order.
    function sync(rows) {
        const wanted = rows.map(row => row[key]);
        for (let i = count - 1; i >= 0; --i) {
            if (wanted.indexOf(get(i)[key]) < 0)
                remove(i);
        }
        for (let i = 0; i < rows.length; ++i) {
            const at = indexOfKey(wanted[i], i);
            if (at < 0) {
                insert(i, rows[i]);
            } else {
                if (at !== i)
                    move(at, i, 1);
                set(i, rows[i]);
            }
        }
    }
}
