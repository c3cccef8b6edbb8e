# Configuration of Sphinx, for the versions of Debian 12 and 13. scripts/docs puts the sources of
# the site into one folder and builds it.
import os

project = 'libteleform'
version = release = os.environ['VERSION']
html_title = f'libteleform {version}'
extensions = ['breathe', 'myst_parser', 'sphinx_copybutton']
breathe_projects = {project: '../xml'}
breathe_default_project = project
breathe_show_include = False
myst_heading_anchors = 3
primary_domain = 'cpp'
highlight_language = 'none'
toc_object_entries_show_parents = 'hide'

html_theme = 'furo'
templates_path = ['templates']
html_static_path = ['static']
html_css_files = ['site.css']
html_js_files = [('site.js', {'defer': 'defer'})]
html_copy_source = False
html_show_sphinx = False
html_show_copyright = False
html_show_search_summary = False  # Summaries are loaded page by page, which a folder doesn't allow.
html_permalinks = False
pygments_style = 'xcode'
pygments_dark_style = 'github-dark'
html_theme_options = {
    'light_css_variables': {'color-code-background': '#f5f7f9'},
    'dark_css_variables': {
        'color-code-background': '#1a1d21',
        'color-foreground-primary': '#ffffffcc',
        'color-foreground-secondary': '#9ca0a5',
        'color-foreground-muted': '#9ca0a5',
        'color-foreground-border': '#666666',
        'color-background-primary': '#131416',
        'color-background-secondary': '#1a1c1e',
        'color-background-hover': '#1e2124',
        'color-background-hover--transparent': '#1e212400',
        'color-background-border': '#303335',
        'color-background-item': '#444',
        'color-brand-primary': '#6cb0f4',
        'color-brand-content': '#6cb0f4',
        'color-highlighted-background': '#083563',
        'color-highlight-on-target': '#333300',
        'color-api-keyword': 'var(--color-foreground-secondary)',
        'color-api-name': '#ff9a9a',
        'color-api-pre-name': '#ff9a9a',
    },
}
