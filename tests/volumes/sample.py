"""The sample: a small private volume from which some things were deleted."""
import calendar
import os
import random
import time

from maker import HERE, Disk, Volume, comb, text
from pictures import jpeg, png

FOLDER = os.path.normpath(os.path.join(HERE, '..', '..', 'samples'))

ZOE = '''Dear Aunt Zoë,

thank you for the parcel. The jam arrived whole, the biscuits less so, and both are gone.
Jürgen has repaired the fence at last and says that it will outlive us all.

We are coming on the 14th, by the train that stops at noon. Please don't cook for six again.

With love from all of us
Irène
'''
COUNCIL = '''To the Town Council

The lamp at the corner of Mill Lane and Station Road has been dark since October.
I reported it on the 3rd and again on the 19th. Would you kindly have it seen to?

Yours faithfully
I. Lambert
'''
RECIPE = '''Käsespätzle (für vier)

400 g Mehl, 4 Eier, 150 ml Wasser, 1 TL Salz
300 g Bergkäse, 3 große Zwiebeln, Butter

Teig schlagen, bis er Blasen wirft. Durch die Presse ins kochende Wasser drücken.
Lagenweise mit dem Käse schichten, geröstete Zwiebeln darüber. Sofort essen.
'''
SCHOOL = '''運動会のお知らせ

日時　十月七日（土）　午前九時から
場所　第二小学校　校庭

雨の場合は翌日に行います。お弁当と水筒をお持ちください。
'''
TIMETABLE = '''Расписание занятий хора

Понедельник  18:30  сопрано и альты
Среда        18:30  тенора и басы
Пятница      19:00  все вместе

Ноты лежат в шкафу у окна.
'''
WALTZ = '''X:1
T:Waltz for the landing stage
M:3/4
L:1/4
K:A
A c e | a2 g | f d B | c3 | B d f | b2 a | g e c | A3 |]
'''
STUDY = '''X:3
T:Étude nº 3
M:6/8
L:1/8
K:Dm
DFA dAF | EGB eBG | FAc fcA | Gcd e2c | dAF DFA | GEC ^CEG | F2E D3- | D6 |]
'''
TODO = 'find the negatives\nask Tom about the boat\nreturn the ladder\n'


def expenses(year):
    rng = random.Random('expenses %d' % year)
    lines = ['date;what;amount']
    for day in range(1, 366, 2):
        what = rng.choice(['bread', 'train', 'rent', 'seeds', 'café', 'books', 'paint', 'electricity'])
        when = time.strftime('%Y-%m-%d', time.gmtime(calendar.timegm((year, 1, 1, 0, 0, 0)) + day * 86400))
        lines.append('%s;%s;%d.%02d' % (when, what, rng.randrange(1, 90), rng.randrange(100)))
    return ('\r\n'.join(lines) + '\r\n').encode()


def weather(year):
    rng = random.Random('weather %d' % year)
    lines = ['%03d  %5.1f C  %4.1f mm  %s' % (day, rng.gauss(11, 7), max(0, rng.gauss(0, 4)),
                                             rng.choice(['NW light', 'SW fresh', 'calm', 'E light']))
             for day in range(1, 366) for _ in range(8)]
    return ('\n'.join(lines) + '\n').encode()


KEPT = {
    '/Documents/Letter to the council.txt': COUNCIL.encode(),
    '/Documents/Expenses 2023.csv': expenses(2023),
    '/Pictures/Garden plan.png': png(160, 120, 4),
    '/Music notes/Waltz for the landing stage.abc': WALTZ.encode(),
    '/To do.txt': TODO.encode(),
}
GONE = {
    '/Documents/Letter to Aunt Zoë.txt': ZOE.encode(),
    '/Documents/Rezept für Käsespätzle.txt': RECIPE.encode(),
    '/Documents/運動会のお知らせ.txt': SCHOOL.encode(),
    '/Documents/Расписание хора.txt': TIMETABLE.encode(),
    '/Documents/Expenses 2022.csv': expenses(2022),
    '/Documents/Notes of the reading circle.txt': text('Notes of the reading circle', 24000),
    '/Pictures/Sunset.png': png(320, 200, 1),
    '/Pictures/Lake.jpg': jpeg(640, 480, 2),
    '/Music notes/Étude nº 3.abc': STUDY.encode(),
}
GONE_FOLDER = {
    '/Pictures/Summer 2022/Harbour.jpg': jpeg(800, 600, 3),
    '/Pictures/Summer 2022/Hills.png': png(240, 160, 0),
    '/Pictures/Summer 2022/captions.txt': 'Harbour: the last evening\nHills: before the rain\n'.encode(),
    '/Pictures/Summer 2022/写真/夕焼け.png': png(120, 80, 3),
}


def put(v, contents):
    """Files of different ages, each changed some days after it was made."""
    for i, (path, data) in enumerate(sorted(contents.items())):
        v.file(path, data)
        made = calendar.timegm((2022, 9, 1, 8, 30, 0)) + i * 9 * 86400 + 611 * i
        v.dated(path, made, made + (i % 5) * 86400 + 7200)


def make():
    v = Volume(24 << 20, label='Home')
    with v:
        put(v, KEPT | GONE | GONE_FOLDER)
        v.compress_inside('/Weather')
        put(v, {'/Weather/Log 2020.txt': weather(2020), '/Weather/Log 2021.txt': weather(2021)})
    with v.only_free(comb(2)), v:
        put(v, {'/Documents/Diary in pieces.txt': text('Diary', 70000)})
    with v:
        v.delete(*GONE, '/Weather/Log 2021.txt', '/Documents/Diary in pieces.txt')
        v.delete_tree('/Pictures/Summer 2022')
    disk = Disk('sample')
    disk.primary(v)
    return disk
