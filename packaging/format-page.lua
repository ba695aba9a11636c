-- Turns a page of docs/formats into a manual page of section 5. Metadata: page, its name.

local title

-- The first heading is the page's title; those below it become sections.
local function Heading(element)
  if element.level == 1 then
    title = pandoc.utils.stringify(element.content)
    return {}
  end
  element.level = element.level - 1
  local text = pandoc.utils.stringify(element.content)
  if element.level == 1 and not text:match('%.') then -- names of files stay as they are
    element.content = pandoc.Str(pandoc.text.upper(text))
  end
  return element
end

-- Columns are as wide as what they hold, but for the widest ones, which share what is left of the line.
local LINE, GAP = 67, 3
local UNIT = 70 -- in which the writer counts widths

local function Columns(element)
  local simple = pandoc.utils.to_simple_table(element)
  local widths, sum = {}, 0
  for column = 1, #simple.aligns do
    local width = pandoc.text.len(pandoc.utils.stringify(simple.header[column]))
    for _, row in ipairs(simple.rows) do
      width = math.max(width, pandoc.text.len(pandoc.utils.stringify(row[column])))
    end
    widths[column] = width + 1
    sum = sum + widths[column] + GAP
  end
  for _ = LINE + 1, sum do
    local widest = 1
    for column = 2, #widths do
      widest = widths[column] > widths[widest] and column or widest
    end
    widths[widest] = widths[widest] - 1
  end
  for column = 1, #widths do
    simple.widths[column] = widths[column] / UNIT
  end
  return pandoc.utils.from_simple_table(simple)
end

local function Code(element)
  return pandoc.Strong(element.text)
end

-- Pages that refer to each other do so by their names as manual pages.
local function Reference(element)
  local page = element.target:match('^([%w-]+)%.md')
  if page then
    element.content:extend({pandoc.Str(' ('), pandoc.Strong('th-ntfs-' .. page), pandoc.Str('(5))')})
  end
  return element.content
end

-- Where the sources stand is of no use in an installation.
local function Paragraph(element)
  if pandoc.utils.stringify(element):match('^The code: ') then
    return {}
  end
end

local function Whole(document)
  local page = pandoc.utils.stringify(document.meta.page)
  local blocks = pandoc.List({
    pandoc.Header(1, 'NAME'), pandoc.Para({pandoc.Str(page .. ' - ' .. title:gsub('^%u', string.lower))}),
    pandoc.Header(1, 'DESCRIPTION'), pandoc.RawBlock('man', '.ad l')})
  blocks:extend(document.blocks)
  blocks:extend({pandoc.Header(1, 'SEE ALSO'),
                 pandoc.Para({pandoc.Strong('th-ntfs-cli'), pandoc.Str('(1), '), pandoc.Strong('th-ntfs'), pandoc.Str('(1)')})})
  document.blocks = blocks
  document.meta = {title = page, section = '5', header = 'File Formats', footer = 'Tarnholt Volume Salvage (NTFS)'}
  return document
end

return {{Header = Heading, Link = Reference, Para = Paragraph, Table = Columns}, {Code = Code}, {Pandoc = Whole}}
